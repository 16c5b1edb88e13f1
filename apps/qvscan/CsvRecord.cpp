// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/CsvRecord.h"

#include "rules/format/AttributeTable.h"

namespace Quorvane {

namespace {

std::string s_field(std::string const& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char const c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

} // namespace

std::string csvHeader() {
    std::string line = "source";
    for (auto const& attribute : attributeTable) {
        line += "," + std::string(attribute.m_name);
    }
    return line + "\n";
}

std::string csvRecord(std::string const& source, ScanRecord const& record) {
    auto line = s_field(source);
    if (!record.isJudged()) {
        return line + std::string(attributeCount, ',') + "\n";
    }
    for (auto const value : record.attributes) {
        line += "," + std::to_string(value);
    }
    return line + "\n";
}

} // namespace Quorvane
