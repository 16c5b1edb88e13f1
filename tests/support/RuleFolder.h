// SPDX-License-Identifier: Apache-2.0
//
// RuleFolder: a root folder of its own with the fixed rule directory in it, in force as long as the
// object lives, and writers for the two rule files and the version file. One at a time.
#pragma once

#include "rules/format/RuleFiles.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Quorvane::Testing {

class RuleFolder {
  public:
    RuleFolder();
    RuleFolder(RuleFolder const&) = delete;
    RuleFolder& operator=(RuleFolder const&) = delete;
    ~RuleFolder();

    // Paths inside the rule directory.
    std::filesystem::path path(std::string const& name) const;
    std::filesystem::path const& root() const { return m_root; }

    void writeFile(std::string const& name, std::string const& bytes) const;
    void writeReadme(std::string const& text) const;
    void writeTree(std::vector<DTNode> const& nodes) const;
    void writeElite(EliteFileHeader const& header, std::vector<EliteNodes> const& nodes) const;
    void remove(std::string const& name) const;

  private:
    std::filesystem::path m_root;
};

// The bytes of the files, for tests that damage them.
std::string treeBytes(std::vector<DTNode> const& nodes);
std::string eliteBytes(EliteFileHeader const& header, std::vector<EliteNodes> const& nodes);

// A node that admits messages whose `attribute` equals `value`.
DTNode node(std::int32_t attribute, std::int32_t value, double confidence, double support = 50.0);
DTNode leaf(std::int32_t attribute, std::int32_t value, double confidence, double support = 50.0);
// A tree whose record `treeRoot` has `children`, which are the records from 3 on.
std::vector<DTNode> treeOf(std::vector<DTNode> const& children);

EliteNodes deciding(std::int32_t code, double weight, double support,
                    std::vector<EliteCondition> const& conditions = {});
EliteNodes adjusting(char code, double weight, std::vector<EliteCondition> const& conditions = {});
EliteFileHeader eliteHeader(std::int32_t nodeCount, std::int32_t selectMode,
                            std::int32_t alsoWalkTree = 0);

} // namespace Quorvane::Testing
