// SPDX-License-Identifier: Apache-2.0
//
// The styles and scripts of the drawings: files of page/, linked in.
#pragma once

#include <string_view>

namespace Quorvane::Show {

std::string_view shadesStyle();
std::string_view svgStyle();
std::string_view pageStyle();

// In the order in which they lean on one another.
std::string_view treeScript();
std::string_view searchScript();
std::string_view answerScript();
std::string_view messagesScript();
std::string_view trialScript();
std::string_view mainScript();

} // namespace Quorvane::Show
