// SPDX-License-Identifier: Apache-2.0
//
// One scan explained as text for people. A pure function.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "platform/HeaderContainer.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// What is explained. REQUIRES: a record of depth `alternatives`; all outlive the call.
struct ExplainedScan {
    std::string const& m_source;
    HeaderContainer const& m_headers; // of the message; empty for a vector
    ScanRecord const& m_record;
    DeepHeaderSettings const& m_settings;
    Rules::RuleNames const& m_names;
};

enum class ExplainLength {
    brief, // about 15 lines: of long lists their most telling part
    full,  // the whole lists, then the attributes, the rules that fired and the path in the tree
};

// Verdict and source on one line; then, indented, the reason, what decided and why, the trail as a
// table, and what another verdict would have needed. An empty line ends it. `colour`: of the
// verdict, with the escape sequences of terminals (ECMA-48).
std::string textExplain(ExplainedScan const& scan, ExplainLength length, bool colour);

} // namespace Quorvane
