// SPDX-License-Identifier: Apache-2.0
//
// `qvrules show`: a rule set drawn.
#pragma once

#include <string>

namespace Quorvane::RulesApp {

struct ShowArguments {
    std::string m_rules; // text or folder
    std::string m_format = "text";
    std::string m_output = "-";
};

int show(ShowArguments const& arguments);

} // namespace Quorvane::RulesApp
