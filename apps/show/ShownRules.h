// SPDX-License-Identifier: Apache-2.0
//
// ShownRules: a rule set as all drawings need it: the tree in reading order, each node once, with
// its test in words and where the walk continues or gives up, and the elite rules.
//
// A plain value. It is made of any rule set, also of one that no engine would load: a tree may
// contain circles, share nodes and name nodes that do not exist.
#pragma once

#include "rules/format/AttributeTable.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"
#include "ScanRecord.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Show {

// A test in the words of the rule language, as "NAME is VALUE", and as a sentence.
struct ShownTest {
    std::string m_condition;
    std::string m_test;
    std::string m_sentence;
};

// Where the walk goes from a node, one for each child slot that it can look at.
struct ShownBranch {
    enum class Kind : std::uint8_t {
        node,      // a node that is drawn below this one
        elsewhere, // a node that is drawn below another parent
        circle,    // back to a node that this one lies below
        end,       // the walk gives up when it reaches this slot
    };
    Kind m_kind = Kind::node;
    std::int32_t m_child = 0;
    // In m_nodes of the node; of Kind::end meaningless.
    std::size_t m_index = 0;
    // Except for Kind::node: where it leads, or why the walk ends, for people.
    std::string m_text;

    bool isProblem() const { return m_kind == Kind::circle || m_kind == Kind::end; }
};

struct ShownNode {
    std::int32_t m_number = 0;
    DTNode m_record{};
    std::size_t m_depth = 0; // the root's is 0
    // What admits a message; for the root "all mail".
    ShownTest m_test;
    // Part of the training mail that came here, 0..1; empty when the file does not say.
    std::optional<double> m_share;
    // What it is called; empty: it has no name.
    std::optional<Rules::RuleName> m_name;
    // Why a message that stays here gets no verdict, for people; empty for ordinary nodes.
    std::string m_problem;
    std::vector<ShownBranch> m_branches;

    bool isLeaf() const { return m_record.isLeaf != 0; }
    bool isRoot() const { return m_number == treeRoot; }
    // Whether spam and ham were counted; value1 alone is in every file.
    bool isCounted() const { return m_record.value2 != 0 || m_record.value3 != 0; }
};

struct ShownElite {
    EliteNodes m_rule;
    // Its place among the rules that engines keep, from 0 on; empty when the loader drops it.
    std::optional<std::size_t> m_place;
    // "'m'" or "9001".
    std::string m_code;
    // What it is called; empty: it has no name.
    std::optional<Rules::RuleName> m_name;
    // "adds 0.02", "subtracts 0.1", "97 % spam", "never fires: type 7", "dropped by engines".
    std::string m_effect;
    // One for each condition; none: it always matches.
    std::vector<ShownTest> m_tests;
};

struct ShownRules {
    // What the rules are called: the path that they came from.
    std::string m_name;
    std::optional<std::int32_t> m_version;
    // Why no host would load them; empty when hosts do.
    std::optional<std::string> m_loadProblem;
    // In reading order, the root first; never empty.
    std::vector<ShownNode> m_nodes;
    // Nodes of the file that the walk never reaches.
    std::vector<std::int32_t> m_unreached;
    // Empty when there is no elite file, or one without a whole header.
    std::optional<EliteFileHeader> m_eliteHeader;
    std::vector<ShownElite> m_elite;

    std::size_t leafCount() const;
    std::size_t depth() const;
};

ShownRules shownRules(std::string const& name, Rules::RuleSet const& set);

// The parts of it.
ShownTest shownTest(AttributeTest const& test);
std::vector<ShownElite> shownElite(Rules::EliteFile const& file, Rules::RuleNames const& names);

// "The first deciding rule that matches is used; then the tree is asked.", for people.
std::string selectModeText(EliteFileHeader const& header);

} // namespace Quorvane::Show
