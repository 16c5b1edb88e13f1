// SPDX-License-Identifier: Apache-2.0
//
// The columns of figures beside a tree in text. Pure functions.
#pragma once

#include "apps/show/Drawings.h"

#include <string>
#include <vector>

namespace Quorvane::Show {

struct TextFigure {
    std::string m_heading;
    // Of one node; empty where there is nothing to say.
    std::string (*m_text)(ShownNode const&, Traffic const*);
    // The first to go where there is no room for all.
    bool m_isLesser = false;
};

// Probability of spam first; counts where the file has any; measured shares where there are any.
std::vector<TextFigure> textFigures(Drawing const& drawing);

} // namespace Quorvane::Show
