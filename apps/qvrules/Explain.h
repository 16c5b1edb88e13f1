// SPDX-License-Identifier: Apache-2.0
//
// `qvrules explain`: what rules say of a message or a vector, why, and what would have been needed
// for another verdict.
#pragma once

#include "apps/qvrules/HostOptions.h"

#include <string>

namespace Quorvane::RulesApp {

struct ExplainArguments {
    std::string m_rules; // text or folder
    std::string m_input; // as ExplainInput takes it
    std::string m_format = "text";
    GivenSettings m_settings; // settings and facts
};

int explain(ExplainArguments const& arguments);

} // namespace Quorvane::RulesApp
