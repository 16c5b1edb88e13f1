// SPDX-License-Identifier: Apache-2.0
//
// The elite rules of a file, for the drawings. Pure functions.
#pragma once

#include "apps/show/ShownRules.h"

namespace Quorvane::Show {

std::vector<ShownElite> shownElite(Rules::EliteFile const& file);

} // namespace Quorvane::Show
