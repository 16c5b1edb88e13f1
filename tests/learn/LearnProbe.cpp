// SPDX-License-Identifier: Apache-2.0
//
// Learns a tree from a CSV of vectors and prints what compare_with_sklearn.py needs to know:
//   learn_probe FILE entropy|gini MAX_NODES MIN_SUPPORT
// prints "leaves nodes impurity", the impurity averaged over the messages.
#include "rules/learn/CartGrower.h"
#include "rules/learn/Impurity.h"
#include "rules/vectors/LearnError.h"
#include "rules/vectors/VectorCsv.h"

#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace Quorvane::Rules;

double s_trainingImpurity(GrownTree const& tree, ImpurityKind kind) {
    double sum = 0.0;
    for (auto const& node : tree.m_nodes) {
        sum += node.isLeaf() ? summedImpurity(kind, node.m_counts) : 0.0;
    }
    return sum / static_cast<double>(tree.m_nodes[0].m_counts.total());
}

void s_run(std::vector<std::string> const& arguments) {
    std::ifstream input(arguments.at(0));
    VectorTableBuilder table;
    readVectorCsv(input, arguments.at(0), {}, table);
    LearnSettings settings;
    settings.m_impurity = arguments.at(1) == "gini" ? ImpurityKind::gini : ImpurityKind::entropy;
    settings.m_maxNodes = std::stoi(arguments.at(2));
    settings.m_minSupport = std::stod(arguments.at(3));
    auto const tree = growTree(table.finish().all(), settings);
    std::cout << tree.leafCount() << ' ' << tree.writtenSize() << ' ' << std::setprecision(17)
              << s_trainingImpurity(tree, settings.m_impurity) << '\n';
}

} // namespace

int main(int argc, char** argv) {
    try {
        s_run({argv + 1, argv + argc});
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
