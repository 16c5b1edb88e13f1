// SPDX-License-Identifier: Apache-2.0
//
// What commands that show names of rules say when there are none to show.
#pragma once

#include <string>

namespace Quorvane::RulesApp {

// Says on standard error why the names of the rules at `path` cannot be used, unless `problem` is
// empty.
void warnAboutNames(std::string const& path, std::string const& problem);

} // namespace Quorvane::RulesApp
