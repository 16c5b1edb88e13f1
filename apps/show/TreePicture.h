// SPDX-License-Identifier: Apache-2.0
//
// The tree as a picture: elements of SVG for a file of their own and for the page. A plain value.
#pragma once

#include "apps/show/NodeText.h"

#include <string>

namespace Quorvane::Show {

struct TreePicture {
    double m_width = 0.0; // pixels
    double m_height = 0.0;
    std::string m_svg; // from 0, 0 on
};

// From left to right: a column for each level, a row for each end of the tree, a node in the middle
// of its children. A node has its number as data-node, and the line to it the same as data-to. The
// bar below its text divides its training mail into spam and ham.
TreePicture treePicture(Drawing const& drawing, Digits digits);

} // namespace Quorvane::Show
