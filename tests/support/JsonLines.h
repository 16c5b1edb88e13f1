// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace Quorvane::Testing {

using Json = nlohmann::ordered_json;

// The records of a text, one for each line.
inline std::vector<Json> jsonLines(std::string const& text) {
    std::vector<Json> records;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        records.push_back(Json::parse(line));
    }
    return records;
}

} // namespace Quorvane::Testing
