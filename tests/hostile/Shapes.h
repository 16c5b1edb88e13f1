// SPDX-License-Identifier: Apache-2.0
//
// Header sections as an attacker would write them: each of about so many bytes, whatever its shape.
#pragma once

#include "support/Message.h"

#include <string>
#include <vector>

namespace Quorvane::Testing {

struct Shape {
    char const* m_name;
    // A header section of `size` bytes, more or less.
    std::string (*m_text)(std::size_t size);
    // With a list of reputation scores that names all its relays.
    bool m_hasScores = false;
};

std::vector<Shape> const& hostileShapes();

// A message of this shape, ready to be judged.
Message hostileMessage(Shape const& shape, std::size_t size);

} // namespace Quorvane::Testing
