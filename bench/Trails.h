// SPDX-License-Identifier: Apache-2.0
//
// Header sections to measure on. Invented ones in the shapes and lengths of real mail, the same at
// every run; or those of real messages.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Quorvane::Bench {

struct Trails {
    std::vector<std::string> m_blocks;   // whole header sections
    std::vector<std::string> m_received; // the values of all their Received headers
};

// Sections with 3.5 Received headers, a third of them older ones of public relays, as in the mail
// that our rules were learned from.
Trails makeTrails(std::size_t messages);

// At most `messages` messages of those below `folder`, evenly spread: mailboxes or files, packed or
// not. A std::runtime_error when there is none.
Trails readTrails(std::string const& folder, std::size_t messages);

// Those of the folder that the environment variable QV_BENCH_MAIL names; without it invented ones.
Trails benchmarkTrails(std::size_t messages);

} // namespace Quorvane::Bench
