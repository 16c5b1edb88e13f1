// SPDX-License-Identifier: Apache-2.0
//
// Invented header blocks in the shapes and lengths of real ones: about five Received headers of
// about 200 bytes each a message. The same blocks at every run.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Bench {

struct Trails {
    std::vector<std::string> m_blocks;   // whole header sections
    std::vector<std::string> m_received; // the values of all their Received headers
};

Trails makeTrails(std::size_t messages);

} // namespace Quorvane::Bench
