// SPDX-License-Identifier: Apache-2.0
#include "rules/model/RuleSet.h"

#include "rules/model/Readme.h"

namespace Quorvane::Rules {

std::optional<std::int32_t> RuleSet::version() const {
    return m_readme ? readmeVersion(*m_readme) : std::nullopt;
}

void RuleSet::setVersion(std::int32_t version) {
    m_readme = readmeText(version);
}

DTNode emptyNode() {
    return DTNode{};
}

EliteFileHeader plainEliteHeader() {
    EliteFileHeader header{};
    header.selectMode = SelectMode::first;
    return header;
}

} // namespace Quorvane::Rules
