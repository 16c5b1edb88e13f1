// SPDX-License-Identifier: Apache-2.0
//
// Scanner: rules and settings that judge messages, for Python. judge may be called without the
// interpreter's lock, from many threads; the rest needs it.
//
// Relays, patterns and the resolver belong to the process. A scanner that is made later with other
// ones puts these in force, and the earlier one refuses to judge from then on.
#pragma once

#include "apps/host/ScanHost.h"
#include "python/Answer.h"
#include "python/MessageList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <pybind11/pybind11.h>

namespace Quorvane::Python {

class Scanner {
  public:
    // Throws a SettingsError or a RuleError.
    Scanner(pybind11::handle rules, pybind11::handle settings);

    // Throws std::runtime_error when a later scanner has put other settings in force.
    void requireInForce() const;

    // Uses the memory of `judgement` again.
    void judge(InputItem const& item, Judgement& judgement) const;
    // For Python.
    Answer answer(Judgement judgement) const { return {std::move(judgement), m_host}; }
    // 0: one for each core.
    unsigned int jobs() const { return m_host->settings().m_jobs; }

    Answer scan(pybind11::handle message, pybind11::kwargs const& facts) const;
    pybind11::object explain(pybind11::handle message, pybind11::kwargs const& facts) const;
    // An array.array, or None.
    pybind11::object vector(pybind11::handle message, pybind11::kwargs const& facts) const;
    std::optional<std::int32_t> ruleVersion() const { return m_host->ruleVersion(); }

  private:
    // Why a header section is not judged, apart from a problem that is known; empty: it is.
    std::string problemWith(std::string_view headers, std::string const& problem) const;

    struct Scan {
        std::string m_source;
        HeaderContainer m_headers;
        ScanRecord m_record;
    };
    Scan scan(pybind11::handle message, pybind11::kwargs const& facts, RecordDepth depth) const;

    std::shared_ptr<ScanHost const> m_host;
    // The one whose relays, patterns and resolver these are.
    std::shared_ptr<ScanHost const> m_platform;
};

// A message, bytes or a message of Python's.
Message messageOf(pybind11::handle message);

void bindScanner(pybind11::module_& module);

} // namespace Quorvane::Python
