// SPDX-License-Identifier: Apache-2.0
//
// A second opinion on rules: what two rule files say of an attribute vector, worked out in the
// plainest way from docs/rule-files.md. It shares no code with the engine, not even the records of
// the files: fields are read at their offsets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Testing {

struct PlainSettings {
    bool m_isWalkToLeaf = true;
    double m_spamThreshold = 0.95;
    double m_hamThreshold = 0.95;
    double m_minSupport = 0.15;
    std::int32_t m_maxEliteLevel = 1;
};

struct PlainVerdict {
    std::int32_t m_node = 0;
    double m_confidence = -1.0;
    double m_support = 0.0;
    double m_adjust = 0.0;
    std::string m_adjustReason;
    bool m_isSpam = false;
    bool m_isHam = false;
};

class PlainRules {
  public:
    using Vector = std::array<std::int32_t, 38>;

    // Without elite file: `elite` is empty, as an empty file means the same.
    PlainRules(std::string const& tree, std::string const& elite) : m_isLoaded(loadTree(tree)) {
        loadElite(elite);
    }

    // Whether the tree can be loaded; the rest means nothing otherwise.
    bool isLoaded() const { return m_isLoaded; }

    PlainVerdict judge(Vector const& vector, PlainSettings const& settings) const {
        PlainVerdict verdict;
        auto const hits = runElite(vector, settings);
        if (hits.m_support >= settings.m_minSupport &&
            hits.m_confidence + hits.m_adjust >= settings.m_spamThreshold) {
            return {hits.m_code,   hits.m_confidence, hits.m_support,
                    hits.m_adjust, hits.m_reasons,    true,
                    false};
        }
        bool const isTreeLet = m_rules.empty() || m_alsoWalkTree == 1;
        if (!isTreeLet || !(95.0 > settings.m_spamThreshold)) {
            return verdict;
        }
        auto const number = walk(vector, settings);
        if (number <= 2) {
            return verdict;
        }
        auto const& node = m_nodes[static_cast<std::size_t>(number)];
        verdict = {number, node.m_confidence, node.m_support, hits.m_adjust, hits.m_reasons, false,
                   false};
        if (node.m_support >= settings.m_minSupport) {
            verdict.m_isSpam = hits.m_adjust + node.m_confidence >= settings.m_spamThreshold;
            verdict.m_isHam =
                !verdict.m_isSpam && 1.0 - node.m_confidence >= settings.m_hamThreshold;
        }
        return verdict;
    }

  private:
    struct Test {
        std::int32_t m_attribute = 0;
        std::int32_t m_test = 0;
        std::int32_t m_value = 0;
    };
    struct Node {
        Test m_test;
        bool m_isLeaf = false;
        std::array<std::int32_t, 10> m_children{};
        std::int32_t m_childCount = 0;
        double m_confidence = 0;
        double m_support = 0;
    };
    struct Rule {
        std::int32_t m_code = 0;
        double m_weight = 0;
        double m_support = 0;
        std::int32_t m_type = 0;
        std::int32_t m_level = 0;
        std::vector<Test> m_tests;
    };
    struct Hits {
        double m_adjust = 0;
        double m_confidence = 0;
        double m_support = 0;
        std::int32_t m_code = 0;
        std::string m_reasons;
    };

    static constexpr std::size_t nodeSize = 92;
    static constexpr std::size_t headerSize = 32;
    static constexpr std::size_t ruleSize = 40;
    static constexpr std::size_t testSize = 12;

    static std::int32_t integerAt(std::string const& bytes, std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) {
            value = value * 256 + static_cast<unsigned char>(bytes[at + i]);
        }
        return static_cast<std::int32_t>(value);
    }

    static double doubleAt(std::string const& bytes, std::size_t at) {
        double value = 0;
        std::memcpy(&value, bytes.data() + at, sizeof value);
        return value;
    }

    static Test testAt(std::string const& bytes, std::size_t at) {
        return {integerAt(bytes, at), integerAt(bytes, at + 4), integerAt(bytes, at + 8)};
    }

    static Node nodeOf(std::string const& record) {
        Node node;
        node.m_test = testAt(record, 0);
        node.m_isLeaf = record[12] != 0;
        for (std::size_t slot = 0; slot < 10; ++slot) {
            node.m_children[slot] = integerAt(record, 20 + 4 * slot);
        }
        node.m_childCount = integerAt(record, 60);
        node.m_confidence = doubleAt(record, 76);
        node.m_support = doubleAt(record, 84);
        return node;
    }

    // A record that is cut off fills its node as far as it goes, unchecked.
    bool loadTree(std::string const& bytes) {
        for (std::size_t i = 0; i * nodeSize < bytes.size() && i < m_nodes.size(); ++i) {
            auto record = bytes.substr(i * nodeSize, nodeSize);
            bool const isWhole = record.size() == nodeSize;
            record.resize(nodeSize, '\0');
            m_nodes[i] = nodeOf(record);
            auto const& test = m_nodes[i].m_test;
            bool const isGood =
                test.m_attribute <= 37 && test.m_test <= 1 && integerAt(record, 64) >= 1;
            if (isWhole && i > 2 && !isGood) {
                return false;
            }
        }
        return bytes.size() < 500 * nodeSize;
    }

    void loadElite(std::string const& bytes) {
        if (bytes.size() < headerSize) {
            return;
        }
        auto const count = integerAt(bytes, 4);
        m_selectMode = integerAt(bytes, 12);
        m_alsoWalkTree = integerAt(bytes, 16);
        auto at = headerSize;
        for (std::int32_t done = 0; done < count && done < 5001; ++done) {
            if (at + ruleSize > bytes.size()) {
                return;
            }
            Rule rule{integerAt(bytes, at),      doubleAt(bytes, at + 4),
                      doubleAt(bytes, at + 12),  integerAt(bytes, at + 24),
                      integerAt(bytes, at + 28), {}};
            bool isKept = integerAt(bytes, at + 20) <= 1;
            auto const tests = integerAt(bytes, at + 36);
            if (tests > 100) {
                return;
            }
            at += ruleSize;
            for (std::int32_t i = 0; i < tests; ++i, at += testSize) {
                if (at + testSize > bytes.size()) {
                    return;
                }
                rule.m_tests.push_back(testAt(bytes, at));
                isKept = isKept && rule.m_tests.back().m_attribute <= 37 &&
                         rule.m_tests.back().m_test <= 1;
            }
            if (isKept) {
                m_rules.push_back(rule);
            }
        }
    }

    static bool isAttribute(std::int32_t number) { return number >= 0 && number <= 37; }

    static bool isEqual(Test const& test, Vector const& vector) {
        return vector[static_cast<std::size_t>(test.m_attribute)] == test.m_value;
    }

    static bool matches(Rule const& rule, Vector const& vector) {
        for (auto const& test : rule.m_tests) {
            bool const holds =
                isAttribute(test.m_attribute) && ((test.m_test == 0 && isEqual(test, vector)) ||
                                                  (test.m_test == 1 && !isEqual(test, vector)));
            if (!holds) {
                return false;
            }
        }
        return true;
    }

    bool isTaken(Rule const& rule, Hits const& hits) const {
        return hits.m_code == 0 || m_selectMode == 2 ||
               (m_selectMode == 3 && rule.m_weight > hits.m_confidence) ||
               (m_selectMode == 4 && rule.m_weight < hits.m_confidence);
    }

    Hits runElite(Vector const& vector, PlainSettings const& settings) const {
        Hits hits;
        for (auto const& rule : m_rules) {
            if (rule.m_level > settings.m_maxEliteLevel || !matches(rule, vector)) {
                continue;
            }
            if (rule.m_type == 1) {
                hits.m_adjust += rule.m_weight;
                hits.m_reasons += static_cast<char>(rule.m_code & 0xFF);
            } else if (rule.m_type == 2 && rule.m_support >= settings.m_minSupport) {
                if (isTaken(rule, hits)) {
                    hits.m_confidence = rule.m_weight;
                    hits.m_code = rule.m_code;
                    hits.m_support = rule.m_support;
                }
                if (m_selectMode == 1) {
                    return hits;
                }
            }
        }
        return hits;
    }

    // The child that admits the message; -1: none, or the rules are wrong.
    std::int32_t admittedChild(Node const& node, Vector const& vector) const {
        if (node.m_childCount > 10) {
            return -1;
        }
        for (std::int32_t slot = 0; slot < node.m_childCount; ++slot) {
            auto const child = node.m_children[static_cast<std::size_t>(slot)];
            if (child < 1 || child > 499) {
                return -1;
            }
            auto const& test = m_nodes[static_cast<std::size_t>(child)].m_test;
            if (!isAttribute(test.m_attribute)) {
                return -1;
            }
            if (isEqual(test, vector) == (test.m_test == 0)) {
                return child;
            }
        }
        return -1;
    }

    std::int32_t walk(Vector const& vector, PlainSettings const& settings) const {
        std::int32_t current = 2;
        for (int steps = 0; steps <= 500; ++steps) {
            auto const& node = m_nodes[static_cast<std::size_t>(current)];
            bool const isSure = !settings.m_isWalkToLeaf &&
                                node.m_confidence >= settings.m_spamThreshold &&
                                node.m_support >= settings.m_minSupport;
            if (node.m_isLeaf || isSure) {
                return current;
            }
            auto const child = admittedChild(node, vector);
            if (child == -1) {
                return -1;
            }
            if (!(m_nodes[static_cast<std::size_t>(child)].m_support >= settings.m_minSupport)) {
                return current;
            }
            current = child;
        }
        return -1; // in a circle
    }

    std::array<Node, 500> m_nodes{};
    std::int32_t m_selectMode = 0;
    std::int32_t m_alsoWalkTree = 0;
    std::vector<Rule> m_rules;
    bool m_isLoaded;
};

} // namespace Quorvane::Testing
