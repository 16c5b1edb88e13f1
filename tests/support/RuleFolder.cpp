// SPDX-License-Identifier: Apache-2.0
#include "support/RuleFolder.h"

#include "platform/File.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace Quorvane::Testing {

namespace {

std::filesystem::path s_makeRoot() {
    auto pattern = (std::filesystem::temp_directory_path() / "qv-rules-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder " + pattern);
    }
    return pattern;
}

template<typename Record>
void s_append(std::string& bytes, Record const& record) {
    bytes.append(reinterpret_cast<char const*>(&record), sizeof record);
}

} // namespace

RuleFolder::RuleFolder() : m_root(s_makeRoot()) {
    std::filesystem::create_directories(path("."));
    File::setRoot(m_root.string());
}

RuleFolder::~RuleFolder() {
    File::setRoot("/");
    std::filesystem::remove_all(m_root);
}

std::filesystem::path RuleFolder::path(std::string const& name) const {
    return m_root / (ruleDirectory + 1) / name;
}

void RuleFolder::writeFile(std::string const& name, std::string const& bytes) const {
    std::ofstream file(path(name), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path(name).string());
    }
}

void RuleFolder::writeReadme(std::string const& text) const {
    writeFile(versionFileName, text);
}

void RuleFolder::writeTree(std::vector<DTNode> const& nodes) const {
    writeFile(treeFileName, treeBytes(nodes));
}

void RuleFolder::writeElite(EliteFileHeader const& header,
                            std::vector<EliteNodes> const& nodes) const {
    writeFile(eliteFileName, eliteBytes(header, nodes));
}

void RuleFolder::remove(std::string const& name) const {
    std::filesystem::remove_all(path(name));
}

std::string treeBytes(std::vector<DTNode> const& nodes) {
    std::string bytes;
    for (auto const& record : nodes) {
        s_append(bytes, record);
    }
    return bytes;
}

std::string eliteBytes(EliteFileHeader const& header, std::vector<EliteNodes> const& nodes) {
    std::string bytes;
    s_append(bytes, header);
    for (auto const& record : nodes) {
        s_append(bytes, static_cast<EliteRecord const&>(record));
        for (auto const& condition : record.conditions) {
            s_append(bytes, condition);
        }
    }
    return bytes;
}

DTNode node(std::int32_t attribute, std::int32_t value, double confidence, double support) {
    DTNode record{};
    record.attribute = attribute;
    record.testValue = value;
    record.value1 = 100;
    record.value2 = 60;
    record.value3 = 40;
    record.confidence = confidence;
    record.support = support;
    return record;
}

DTNode leaf(std::int32_t attribute, std::int32_t value, double confidence, double support) {
    auto record = node(attribute, value, confidence, support);
    record.isLeaf = 1;
    return record;
}

std::vector<DTNode> treeOf(std::vector<DTNode> const& children) {
    std::vector<DTNode> nodes(3, DTNode{});
    nodes.insert(nodes.end(), children.begin(), children.end());
    auto& root = nodes[treeRoot];
    root.childCount = static_cast<std::int32_t>(children.size());
    for (std::size_t i = 0; i < children.size(); ++i) {
        root.children[i] = static_cast<std::int32_t>(i) + treeRoot + 1;
    }
    return nodes;
}

EliteNodes deciding(std::int32_t code, double weight, double support,
                    std::vector<EliteCondition> const& conditions) {
    EliteNodes record{};
    record.code = code;
    record.weight = weight;
    record.support = support;
    record.type = EliteType::deciding;
    record.level = 1;
    record.conditionCount = static_cast<std::int32_t>(conditions.size());
    record.conditions.assign(conditions.begin(), conditions.end());
    return record;
}

EliteNodes adjusting(char code, double weight, std::vector<EliteCondition> const& conditions) {
    auto record = deciding(static_cast<unsigned char>(code), weight, 0.0, conditions);
    record.type = EliteType::adjusting;
    return record;
}

EliteFileHeader eliteHeader(std::int32_t nodeCount, std::int32_t selectMode,
                            std::int32_t alsoWalkTree) {
    EliteFileHeader header{};
    header.nodeCount = nodeCount;
    header.selectMode = selectMode;
    header.alsoWalkTree = alsoWalkTree;
    return header;
}

} // namespace Quorvane::Testing
