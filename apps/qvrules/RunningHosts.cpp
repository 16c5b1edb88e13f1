// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/RunningHosts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

namespace Quorvane::RulesApp {

namespace {

// It judges with rules of its own, never with those in force.
constexpr char ourselves[] = "qvrules";
constexpr char libraryName[] = "/libqvdeepheader.so.";

// 0 for what is no process.
int s_process(std::filesystem::path const& entry) {
    auto const name = entry.filename().string();
    int number = 0;
    auto const end = std::from_chars(name.data(), name.data() + name.size(), number).ptr;
    return end == name.data() + name.size() ? number : 0;
}

bool s_usesLibrary(std::filesystem::path const& process) {
    std::ifstream maps(process / "maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(libraryName) != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<RunningHost> runningHosts() {
    std::vector<RunningHost> hosts;
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator("/proc", error)) {
        auto const process = s_process(entry.path());
        std::string name;
        std::getline(std::ifstream(entry.path() / "comm"), name);
        if (process != 0 && name != ourselves && s_usesLibrary(entry.path())) {
            hosts.push_back({name, process});
        }
    }
    std::sort(hosts.begin(), hosts.end(), [](RunningHost const& left, RunningHost const& right) {
        return left.m_process < right.m_process;
    });
    return hosts;
}

} // namespace Quorvane::RulesApp
