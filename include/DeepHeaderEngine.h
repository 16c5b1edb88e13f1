// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderEngine: the engine for programs that need more than an answer: the record of a scan,
// a judgement of bare attributes, rules that are in memory. Hosts that only want verdicts use
// DeepHeaderScanner.
//
// A counted handle: copies share the engine, which never changes once it is made. Any number of
// engines with different rules live side by side; all operations may be called from many threads at
// once. A scan without a record costs nothing more because of this class.
#pragma once

#include "include2/Export.h"
#include "ScanRecord.h"

#include "DeepHeaderQuery.h"
#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

namespace Quorvane {

class RefDeepHeaderAdapter;

class QV_API DeepHeaderEngine {
  public:
    // Empty: no engine.
    DeepHeaderEngine();

    // The engine that DeepHeaderScanner::init put in force; an empty handle before the first.
    static DeepHeaderEngine inForce();

    // An engine with rules of its own, read as the files qv.dt and qv2.dt are (docs/rule-files.md);
    // `elite` is null when there are no elite rules. Throws a DeepHeaderException when the tree
    // cannot be loaded; elite rules that cannot be loaded are left out.
    static DeepHeaderEngine fromStreams(std::istream& tree, std::istream* elite);

    // True: no engine, and nothing else may be called.
    bool isEmpty() const { return m_engine == nullptr; }

    // Judges one message, as DeepHeaderScanner::postQuery does. May block on DNS. A scan that fails
    // throws nothing: `failure` of the record says why. REQUIRES: not empty, here and below.
    ScanRecord scan(DeepHeaderQuery& query, RecordDepth depth) const;

    // What the rules say of a message of which only these attributes are known.
    ScanRecord judge(std::array<std::int32_t, 38> const& attributes,
                     DeepHeaderSettings const& settings, RecordDepth depth) const;

    // The numbers of the attributes that the rules test, in their order. A program whose rules test
    // nothing that depends on DNS need not let its resolver ask.
    std::vector<std::int32_t> testedAttributes() const;

  private:
    explicit DeepHeaderEngine(RefDeepHeaderAdapter const& engine);

    std::shared_ptr<RefDeepHeaderAdapter> m_engine; // never changes
};

} // namespace Quorvane
