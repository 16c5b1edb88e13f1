// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/AdaptedTree.h"

#include "rules/learn/CartGrower.h"
#include "rules/learn/TreeRecords.h"

#include <algorithm>
#include <limits>
#include <map>

namespace Quorvane::Rules {

namespace {

// A branch needs so many messages on each side, ...
constexpr double leastMessages = 8;
// ... and must save so many bits in telling which of its messages are spam. There are about a
// hundred tests to choose from, so a choice alone costs seven bits.
constexpr double leastGain = 12;
// What the node above says counts in a new node like so many messages.
constexpr double parentMessages = 2;
// How far below the threshold a node stays that the site's mail does not prove right.
constexpr double justBelow = 0.01;

class TreeAdapter {
  public:
    TreeAdapter(std::vector<DTNode>& nodes, CountedVectors const& mail, TreeAdaptation const& how)
        : m_nodes(nodes), m_how(how), m_counts(nodes.size()),
          m_messages(static_cast<double>(sumOf(mail).total())) {}

    void count(CountedVectors const& mail, Judge const& judge) {
        for (auto const& row : mail) {
            auto const decider = judge(row.m_vector).m_decider;
            auto const node = static_cast<std::size_t>(std::max(decider.m_number, 0));
            if (!decider.m_isElite && node >= treeRoot && node < m_nodes.size()) {
                m_decided[node].push_back(row);
                m_counts[node] += row.m_counts;
            }
        }
        addUp();
    }

    void estimate() {
        for (std::size_t i = treeRoot; i < m_counts.size(); ++i) {
            auto const& counts = m_counts[i];
            auto& node = m_nodes[i];
            auto const messages = static_cast<double>(counts.total());
            node.confidence = estimated(node.confidence, m_how.m_nodeMessages, counts);
            node.support = std::max(node.support, 100.0 * messages / m_messages);
            node.value1 = added(node.value1, counts.total());
            node.value2 = added(node.value2, counts.m_spam);
            node.value3 = added(node.value3, counts.m_ham);
        }
    }

    std::size_t grow() {
        auto const before = m_nodes.size();
        for (auto const& [node, mail] : leavesByMail()) {
            growBelow(node, mail);
        }
        return m_nodes.size() - before;
    }

  private:
    // A probability that weighs as much as so many messages, and messages beside it. Where no mail
    // of the site went, nothing is known that was not known before.
    double estimated(double before, double weight, LabelCounts const& counts) const {
        auto const spam = static_cast<double>(counts.m_spam);
        auto const messages = static_cast<double>(counts.total());
        if (before >= m_how.m_sureFrom) {
            return (before * m_how.m_sureMessages + spam) / (m_how.m_sureMessages + messages);
        }
        auto const unseen = counts.total() == 0 ? 0.0 : m_how.m_unseenHam;
        auto const estimate = (before * weight + spam) / (weight + messages + unseen);
        bool const isProven = spam >= m_how.m_provenFrom * (messages + m_how.m_unseenHam);
        return estimate < m_how.m_provenFrom || (isProven && messages > 0)
                   ? estimate
                   : m_how.m_provenFrom - justBelow;
    }

    // The counts of a file end where its numbers do.
    static std::int32_t added(std::int32_t count, std::uint64_t more) {
        constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
        auto const before = std::max(count, 0);
        return more < static_cast<std::uint64_t>(most - before)
                   ? before + static_cast<std::int32_t>(more)
                   : most;
    }

    // A node was passed by all the mail that nodes below it decided. A damaged file may have
    // circles and nodes with several parents; each node counts for one that comes before it.
    void addUp() {
        std::vector<std::size_t> parents(m_nodes.size(), 0);
        for (std::size_t node = treeRoot; node < m_nodes.size(); ++node) {
            auto const count = std::clamp(m_nodes[node].childCount, 0, maxChildren);
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                auto const child =
                    static_cast<std::size_t>(std::max(m_nodes[node].children.at(i), 0));
                if (child > node && child < m_nodes.size()) {
                    parents[child] = node;
                }
            }
        }
        for (auto node = m_nodes.size(); node-- > treeRoot + 1;) {
            m_counts[parents[node]] += m_counts[node];
        }
    }

    std::vector<std::pair<std::size_t, CountedVectors>> leavesByMail() const {
        std::vector<std::pair<std::size_t, CountedVectors>> leaves;
        for (auto const& [node, mail] : m_decided) {
            if (m_nodes[node].childCount == 0) {
                leaves.emplace_back(node, mail);
            }
        }
        std::stable_sort(leaves.begin(), leaves.end(), [](auto const& a, auto const& b) {
            return sumOf(a.second).total() > sumOf(b.second).total();
        });
        return leaves;
    }

    void growBelow(std::size_t leaf, CountedVectors const& mail) {
        auto const messages = static_cast<double>(sumOf(mail).total());
        auto const least = std::max(leastMessages, m_how.m_minSupport / 100.0 * m_messages);
        auto const room = static_cast<int>(maxTreeNodes) - static_cast<int>(m_nodes.size());
        if (messages < 2 * least || room < 2) {
            return;
        }
        LearnSettings settings;
        settings.m_minSupport = 100.0 * least / messages;
        settings.m_minGain = leastGain / messages;
        settings.m_maxNodes = std::min(room + 1, maxLearnedNodes);
        auto const branch = treeRecords(growTree(mail, settings));
        if (branch.size() > treeRoot + 1) {
            graft(leaf, branch);
        }
    }

    // Record treeRoot of the branch is the leaf itself.
    void graft(std::size_t leaf, std::vector<DTNode> const& branch) {
        auto const offset = static_cast<std::int32_t>(m_nodes.size()) - (treeRoot + 1);
        m_nodes[leaf].isLeaf = 0;
        copyChildren(m_nodes[leaf], branch[treeRoot], offset);
        std::vector<double> above(branch.size(), m_nodes[leaf].confidence);
        for (std::size_t i = treeRoot; i < branch.size(); ++i) {
            auto node = branch[i];
            if (i != treeRoot) {
                node.confidence = estimated(above[i], parentMessages,
                                            {static_cast<std::uint64_t>(node.value2),
                                             static_cast<std::uint64_t>(node.value3)});
                node.support = 100.0 * node.value1 / m_messages;
                copyChildren(node, branch[i], offset);
                m_nodes.push_back(node);
            }
            for (int child = 0; child < branch[i].childCount; ++child) {
                above[static_cast<std::size_t>(branch[i].children.at(
                    static_cast<std::size_t>(child)))] = i == treeRoot ? above[i] : node.confidence;
            }
        }
    }

    static void copyChildren(DTNode& to, DTNode const& from, std::int32_t offset) {
        to.childCount = from.childCount;
        for (std::size_t i = 0; i < static_cast<std::size_t>(from.childCount); ++i) {
            to.children.at(i) = from.children.at(i) + offset;
        }
    }

    std::vector<DTNode>& m_nodes;
    TreeAdaptation const& m_how;
    std::vector<LabelCounts> m_counts; // of m_nodes, as they were before
    std::map<std::size_t, CountedVectors> m_decided;
    double m_messages;
};

} // namespace

std::size_t adaptTree(std::vector<DTNode>& nodes, CountedVectors const& mail, Judge const& judge,
                      TreeAdaptation const& how) {
    TreeAdapter adapter(nodes, mail, how);
    adapter.count(mail, judge);
    adapter.estimate();
    return how.m_grows ? adapter.grow() : 0;
}

} // namespace Quorvane::Rules
