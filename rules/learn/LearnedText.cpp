// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/Learner.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace Quorvane::Rules {

namespace {

// A corpus name comes from a path: no byte of it may end the comment.
std::string s_printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return text;
}

void s_addCorpora(std::ostream& text, VectorTable const& table) {
    for (std::size_t i = 0; i < table.corpora().size(); ++i) {
        auto const counts = table.totalOf(i);
        text << "#   " << s_printable(table.corpora()[i]) << ": " << counts.m_spam << " spam, "
             << counts.m_ham << " ham\n";
    }
}

void s_addExcluded(std::ostream& text, LearnSettings const& settings) {
    text << "# Attributes left out:";
    bool any = false;
    for (auto const& facts : attributeTable) {
        if (!settings.m_attributes.at(facts.m_index)) {
            text << ' ' << facts.m_name;
            any = true;
        }
    }
    text << (any ? "\n" : " none\n");
}

void s_addPruning(std::ostream& text, LearnedTree const& learned) {
    text << "# Grown to " << learned.m_grownNodes << " nodes, pruned to "
         << learned.m_tree.writtenSize() << " (alpha " << learned.m_alpha;
    if (learned.m_choice) {
        auto const& choice = *learned.m_choice;
        text << ", chosen by leaving out a corpus at a time: squared error "
             << choice.m_steps[choice.m_chosen].risk() << ", unpruned "
             << choice.m_steps.front().risk();
    }
    text << ").\n";
}

} // namespace

std::string learnedComment(VectorTable const& table, LearnSettings const& settings,
                           LearnedTree const& learned) {
    std::ostringstream text;
    text << std::setprecision(6);
    auto const total = table.total();
    text << "# Learned from " << total.m_spam << " spam and " << total.m_ham << " ham messages, "
         << table.rows().size() << " distinct vectors:\n";
    s_addCorpora(text, table);
    text << "# Impurity: " << (settings.m_impurity == ImpurityKind::gini ? "gini" : "entropy")
         << ", minimum support " << settings.m_minSupport << " %, minimum gain "
         << settings.m_minGain << ", at most " << settings.m_maxNodes << " nodes.\n";
    s_addExcluded(text, settings);
    s_addPruning(text, learned);
    return text.str();
}

} // namespace Quorvane::Rules
