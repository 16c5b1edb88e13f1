// SPDX-License-Identifier: Apache-2.0
//
// qv_rulegen TEXT FOLDER: compiles a rule text into a folder, as "qvrules compile" does. Runs while
// building.
#include "rules/language/LoadRules.h"
#include "rules/model/RuleFolder.h"

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: qv_rulegen TEXT FOLDER\n";
        return 1;
    }
    try {
        Quorvane::Rules::writeFolder(argv[2], Quorvane::Rules::loadRules(argv[1]).m_set);
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
