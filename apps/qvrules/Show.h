// SPDX-License-Identifier: Apache-2.0
//
// `qvrules show`: a rule set drawn, with the traffic of some mail, and served as a page.
#pragma once

#include "apps/qvrules/HostOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct ShowArguments {
    std::string m_rules; // text or folder
    std::string m_format = "text";
    std::string m_output = "-";
    // Mail and tables of vectors to measure the traffic on.
    std::vector<std::string> m_on;
    std::vector<std::string> m_vectors;
    // Messages that the page offers.
    std::vector<std::string> m_messages;
    // Given: serve the page. Empty: on any port that is free.
    std::optional<std::string> m_serve;
    GivenSettings m_settings; // settings and facts, which are of those messages
};

int show(ShowArguments const& arguments);

} // namespace Quorvane::RulesApp
