// SPDX-License-Identifier: Apache-2.0
//
// Rules for the commands that show names.
#pragma once

#include "rules/language/LoadRules.h"

#include <string>

namespace Quorvane::RulesApp {

// As Rules::loadRules; says on standard error when the names cannot be used.
Rules::LoadedRules loadNamedRules(std::string const& path);

// Says so of the rules at `path`, unless `problem` is empty.
void warnAboutNames(std::string const& path, std::string const& problem);

} // namespace Quorvane::RulesApp
