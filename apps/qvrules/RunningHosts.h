// SPDX-License-Identifier: Apache-2.0
//
// The programs that judge mail on this machine right now.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct RunningHost {
    std::string m_name;
    int m_process;
};

// The processes that have loaded the library, as far as this user may see (proc(5)), without those
// of qvrules; in the order of their numbers.
std::vector<RunningHost> runningHosts();

} // namespace Quorvane::RulesApp
