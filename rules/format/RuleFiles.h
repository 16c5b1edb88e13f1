// SPDX-License-Identifier: Apache-2.0
//
// The files of a rule set, and the two binary ones byte by byte (described in docs/rule-files.md).
//
// The binary ones are little-endian and unpadded, and are read straight into these records. Their
// layout is frozen: rule sets in the field depend on every offset. Never renumber, never reorder.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>

namespace Quorvane {

inline constexpr char ruleDirectory[] = "/var/spool/etc/antispam";
inline constexpr char treeFileName[] = "qv.dt";
inline constexpr char eliteFileName[] = "qv2.dt";
// Names of rules, for people; no engine reads it.
inline constexpr char namesFileName[] = "qv.names";
inline constexpr char versionFileName[] = "README";
// All of them, in the order in which they are put in place: a host loads when it sees the version.
// Only the tree is in every set.
inline constexpr std::array<char const*, 4> ruleFileNames{namesFileName, eliteFileName,
                                                          treeFileName, versionFileName};
inline constexpr char versionKey[] = "CF_DT_VERSION=";

// Nodes that the engine's table holds. A file must leave the last one free: a full table cannot be
// distinguished from a file that was cut off at the table's end.
inline constexpr int treeTableSize = 500;
inline constexpr int maxTreeNodes = treeTableSize - 1;
inline constexpr int treeRoot = 2;
inline constexpr int maxChildren = 10;
inline constexpr int maxAttribute = 37;

// How an attribute is compared with a value (DTNode::test, EliteCondition::test).
namespace Comparison {
inline constexpr std::int32_t equals = 0;
inline constexpr std::int32_t differs = 1;
} // namespace Comparison

// A node of qv.dt, 92 bytes; record i of the file is node i. A node holds the test that admits a
// message to it; its parent does not.
struct __attribute__((packed, aligned(4))) DTNode {
    std::int32_t attribute; // 0..37
    std::int32_t test;      // Comparison; any value but `equals` counts as `differs`
    std::int32_t testValue;
    std::uint8_t isLeaf;
    std::array<std::uint8_t, 3> reserved1;
    std::int32_t reserved2;
    std::array<std::int32_t, maxChildren> children; // tried in order
    std::int32_t childCount;
    std::int32_t value1; // training messages at the node, at least 1 from node 3 on
    std::int32_t value2; // spam among them
    std::int32_t value3; // ham among them
    double confidence;   // probability of spam, 0..1
    double support;      // percentage of the training messages that reach the node, 0..100
};
static_assert(sizeof(DTNode) == 92);
static_assert(offsetof(DTNode, children) == 20);
static_assert(offsetof(DTNode, childCount) == 60);
static_assert(offsetof(DTNode, confidence) == 76);
static_assert(offsetof(DTNode, support) == 84);

// How one of several matching deciding elite nodes is chosen (EliteFileHeader::selectMode).
namespace SelectMode {
inline constexpr std::int32_t first = 1; // and ends the run
inline constexpr std::int32_t last = 2;
inline constexpr std::int32_t highest = 3; // confidence; the earlier one on a tie
inline constexpr std::int32_t lowest = 4;  // confidence; the earlier one on a tie
} // namespace SelectMode

// The first 32 bytes of qv2.dt.
struct __attribute__((packed, aligned(4))) EliteFileHeader {
    std::int32_t reserved1;
    std::int32_t nodeCount;
    std::int32_t reserved2;
    std::int32_t selectMode;
    std::int32_t alsoWalkTree; // 1: the tree is consulted although elite nodes are loaded
    std::array<std::uint8_t, 12> reserved3;
};
static_assert(sizeof(EliteFileHeader) == 32);

namespace EliteType {
inline constexpr std::int32_t adjusting = 1;
inline constexpr std::int32_t deciding = 2;
} // namespace EliteType

inline constexpr std::int32_t maxEliteConditions = 100;
inline constexpr std::int32_t maxEliteFlag = 1;
// The loader stops after this many node records, however many the header announces.
inline constexpr int maxEliteNodes = 5001;

// A node record of qv2.dt, 40 bytes, followed by its conditions.
struct __attribute__((packed, aligned(4))) EliteRecord {
    // Adjusting: the low byte is its one-character code. Deciding: its number in the answer.
    std::int32_t code;
    double weight;  // adjusting: added to the confidence; deciding: the confidence
    double support; // deciding: percentage of the training messages, 0..100
    std::int32_t flag;
    std::int32_t type;
    std::int32_t level;
    std::int32_t reserved;
    std::int32_t conditionCount; // 0..100
};
static_assert(sizeof(EliteRecord) == 40);
static_assert(offsetof(EliteRecord, weight) == 4);
static_assert(offsetof(EliteRecord, flag) == 20);
static_assert(offsetof(EliteRecord, conditionCount) == 36);

// A condition record of qv2.dt, 12 bytes.
struct __attribute__((packed, aligned(4))) EliteCondition {
    std::int32_t attribute; // 0..37
    std::int32_t test;      // Comparison; any other value never holds
    std::int32_t value;
};
static_assert(sizeof(EliteCondition) == 12);

// An elite node in memory: its file record and its conditions in file order.
struct EliteNodes : EliteRecord {
    std::list<EliteCondition> conditions;
};

} // namespace Quorvane
