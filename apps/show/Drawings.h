// SPDX-License-Identifier: Apache-2.0
//
// The drawings of a rule set. Pure functions; each gives a whole document.
#pragma once

#include "apps/show/ShownRules.h"
#include "apps/show/TextStyle.h"
#include "apps/show/Traffic.h"

#include <string>
#include <string_view>

namespace Quorvane::Show {

// What to draw. `m_traffic` may be null: nothing was measured. All of it outlives the call.
struct Drawing {
    ShownRules const& m_rules;
    Traffic const* m_traffic = nullptr;
};

// The elite rules as a table and the tree with guides, for a terminal.
std::string textDrawing(Drawing const& drawing, TextStyle const& style);
// The halves of it.
std::string eliteTable(Drawing const& drawing, TextStyle const& style);
std::string textTree(Drawing const& drawing, TextStyle const& style);

// Styles and scripts of the drawings, files of page/.
std::string_view shadesStyle();
std::string_view svgStyle();
std::string_view pageStyle();
std::string_view pageScript();

// For Graphviz.
std::string dotDrawing(Drawing const& drawing);
// A picture that stands alone.
std::string svgDrawing(Drawing const& drawing);

} // namespace Quorvane::Show
