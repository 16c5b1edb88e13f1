// SPDX-License-Identifier: Apache-2.0
#include "adapter/TestedAttributes.h"

#include "adapter/DeepHeaderAdapter.h"

#include <algorithm>
#include <bitset>
#include <cstddef>

namespace Quorvane {

namespace {

using Attributes = std::bitset<attributeCount>;

void s_add(Attributes& attributes, std::int32_t index) {
    if (isAttribute(index)) {
        attributes.set(static_cast<std::size_t>(index));
    }
}

void s_addElite(DeepHeaderAdapter const& engine, Attributes& attributes) {
    for (auto const& rule : engine.eliteNodes()) {
        for (auto const& condition : rule.conditions) {
            s_add(attributes, condition.attribute);
        }
    }
}

void s_addTree(DeepHeaderAdapter const& engine, Attributes& attributes) {
    auto const& table = engine.treeNodes();
    std::bitset<treeTableSize> isSeen;
    std::vector<std::int32_t> open{treeRoot};
    while (!open.empty()) {
        auto const& node = table.at(static_cast<std::size_t>(open.back()));
        open.pop_back();
        auto const count = std::clamp(node.childCount + 0, 0, maxChildren);
        for (int i = 0; i < count; ++i) {
            std::int32_t const child = node.children[static_cast<std::size_t>(i)];
            if (isChildIndex(child) && !isSeen[static_cast<std::size_t>(child)]) {
                isSeen.set(static_cast<std::size_t>(child));
                s_add(attributes, table.at(static_cast<std::size_t>(child)).attribute);
                open.push_back(child);
            }
        }
    }
}

} // namespace

std::vector<std::int32_t> testedAttributes(DeepHeaderAdapter const& engine) {
    Attributes attributes;
    s_addElite(engine, attributes);
    s_addTree(engine, attributes);
    std::vector<std::int32_t> numbers;
    for (std::int32_t i = 0; i <= maxAttribute; ++i) {
        if (attributes[static_cast<std::size_t>(i)]) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

} // namespace Quorvane
