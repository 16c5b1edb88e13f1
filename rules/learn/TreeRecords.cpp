// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/TreeRecords.h"

#include "rules/learn/Impurity.h"
#include "rules/learn/SplitSearch.h"
#include "rules/vectors/LearnError.h"

#include <algorithm>
#include <limits>

namespace Quorvane::Rules {

namespace {

class RecordWriter {
  public:
    explicit RecordWriter(GrownTree const& tree)
        : m_tree(tree), m_messages(tree.m_nodes.front().m_counts.total()),
          m_shift(shiftFor(m_messages)), m_records(treeRoot) {}

    std::vector<DTNode> write() {
        addNode(0);
        return std::move(m_records);
    }

  private:
    static unsigned shiftFor(std::uint64_t messages) {
        unsigned shift = 0;
        while (messages >> shift > std::numeric_limits<std::int32_t>::max()) {
            ++shift;
        }
        return shift;
    }

    std::int32_t fileCount(std::uint64_t count) const {
        return static_cast<std::int32_t>(count >> m_shift);
    }

    // Depth is bounded by the node budget.
    std::size_t addNode(std::size_t node) { // NOLINT(misc-no-recursion)
        auto const record = m_records.size();
        m_records.push_back(nodeRecord(node));
        auto const children = m_tree.writtenChildren(node);
        for (std::size_t i = 0; i < children.size(); ++i) {
            auto const child = addNode(children[i]);
            setTest(m_records[child], children, i);
            m_records[record].children.at(i) = static_cast<std::int32_t>(child);
        }
        return record;
    }

    DTNode nodeRecord(std::size_t node) const {
        auto const& grown = m_tree.m_nodes[node];
        DTNode record{};
        record.isLeaf = grown.isLeaf() && node != 0 ? 1 : 0;
        record.childCount = static_cast<std::int32_t>(m_tree.writtenChildren(node).size());
        record.value1 = std::max(fileCount(grown.m_counts.total()), 1);
        record.value2 = fileCount(grown.m_counts.m_spam);
        record.value3 = fileCount(grown.m_counts.m_ham);
        record.confidence = smoothedConfidence(grown.m_counts);
        record.support = supportPercent(grown.m_counts.total(), m_messages);
        return record;
    }

    void setTest(DTNode& record, std::vector<std::size_t> const& children, std::size_t slot) const {
        auto const& child = m_tree.m_nodes[children[slot]];
        auto const& parent = m_tree.m_nodes[child.m_parent];
        bool const isLast = slot + 1 == children.size();
        record.attribute = static_cast<std::int32_t>(parent.m_attribute);
        record.test = isLast && !child.m_hasOneValue ? Comparison::differs : Comparison::equals;
        record.testValue = isLast && child.m_hasOneValue ? child.m_onlyValue : parent.m_value;
    }

    GrownTree const& m_tree;
    std::uint64_t m_messages;
    unsigned m_shift;
    std::vector<DTNode> m_records;
};

} // namespace

std::vector<DTNode> treeRecords(GrownTree const& tree) {
    auto const size = tree.writtenSize() + treeRoot;
    if (size > static_cast<std::size_t>(maxTreeNodes)) {
        throw LearnError("the tree needs " + std::to_string(size) + " records, a rule file holds " +
                         std::to_string(maxTreeNodes));
    }
    return RecordWriter(tree).write();
}

} // namespace Quorvane::Rules
