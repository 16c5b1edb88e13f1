// SPDX-License-Identifier: Apache-2.0
//
// Loads arbitrary bytes as a decision tree. The engine loads it exactly when the checker says so;
// what it loads judges vectors and comes back from its text byte for byte.
#include "JudgedRules.h"
#include "RoundTrip.h"
#include "rules/check/Checker.h"

#include <cstdint>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

constexpr std::size_t mostVectors = 8;

std::vector<AttributeVector> s_vectors(std::vector<DTNode> const& nodes) {
    std::vector<AttributeVector> vectors(1);
    for (std::size_t i = treeRoot + 1; i < nodes.size() && vectors.size() < mostVectors; ++i) {
        auto vector = vectors.back();
        pass(testOf(nodes[i]), vector);
        vectors.push_back(vector);
    }
    return vectors;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const*>(data), size);
    Rules::RuleSet set;
    Rules::readTree(bytes, set);
    check(Rules::writeTree(set) == bytes, "what is read is written back");
    auto const engine = loadEngine(bytes, nullptr);
    check(engine.has_value() == !Rules::loadProblem(set), "the checker knows what engines load");
    auto const findings = Rules::checkRules(set, DeepHeaderSettings());
    if (engine) {
        checkEngine(*engine, s_vectors(set.m_nodes));
        Rules::checkRoundTrip(set);
    } else {
        check(!findings.empty(), "the checker says why a tree cannot be loaded");
    }
    return 0;
}
