// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Learn.h"

#include "apps/commandline/Progress.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/learn/TreeRecords.h"
#include "rules/model/Files.h"
#include "rules/vectors/LearnError.h"
#include "rules/vectors/VectorCsv.h"

#include <iostream>
#include <sstream>

namespace Quorvane::RulesApp {

namespace {

void s_writeTable(std::string const& path, Rules::VectorTable const& table) {
    std::ostringstream text;
    Rules::writeVectorCsv(text, table);
    writeOutput(path, text.str());
}

std::string s_treeText(Rules::LearnedTree const& learned) {
    Rules::RuleSet set;
    set.m_nodes = Rules::treeRecords(learned.m_tree);
    return Rules::ruleText(set);
}

// What stands before the learned tree; empty without --with.
std::string s_textBefore(std::string const& path) {
    if (path.empty()) {
        return {};
    }
    auto text = Rules::readFile(path);
    auto const compiled = Rules::compileRules(text);
    if (!compiled.m_errors.empty()) {
        throw Rules::LearnError(Rules::showErrors(path, text, compiled.m_errors));
    }
    if (!compiled.m_set.m_nodes.empty()) {
        throw Rules::LearnError(path + ": it has a tree already, and --with puts rules before the "
                                       "tree that is learned; take its tree out");
    }
    return text + (text.empty() || text.back() == '\n' ? "\n" : "\n\n");
}

std::string s_counted(std::uint64_t count, std::string const& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

void s_report(Rules::LearnedTree const& learned, TrainingMailCounts const& counts,
              Rules::VectorTable const& table) {
    auto const total = table.total();
    auto const nodes = static_cast<std::uint64_t>(learned.m_tree.writtenSize());
    std::cerr << "qvrules: learned " << s_counted(nodes, "node") << " from " << total.m_spam
              << " spam and " << total.m_ham << " ham ("
              << s_counted(table.rows().size(), "distinct vector") << "; "
              << s_counted(counts.m_notJudgeable, "message") << " without a public hop left out";
    if (counts.m_copies != 0) {
        std::cerr << "; " << counts.m_copies << " of " << counts.m_messages
                  << " messages copied without reverse names";
    }
    std::cerr << ")\n";
    if (learned.m_tree.leafCount() == 1) {
        std::cerr << "qvrules: no attribute tells this spam from this ham: the rules judge "
                     "nothing; learn from more mail or allow smaller support\n";
    }
}

Rules::LearnedTree s_learn(Rules::VectorTable const& table, Rules::LearnSettings const& settings,
                           Rules::PruningPlan const& plan) {
    Progress progress("qvrules");
    progress.begin("learning");
    auto const report = [&progress](std::size_t fold, std::size_t folds, std::string_view corpus) {
        progress.begin("learning without " + std::string(corpus) + " (" + std::to_string(fold + 1) +
                       " of " + std::to_string(folds) + ")");
    };
    return Rules::learnTree(table, settings, plan, report);
}

} // namespace

int learn(CommandLine const& line) {
    auto const mail = trainingMail(line);
    auto const output = line.text("output");
    auto const tablePath = line.text("table");
    if (mail.m_paths.isEmpty()) {
        throw UsageError("give training mail (--ham, --spam) or vectors (--vectors)");
    }
    if (output.empty() && tablePath.empty()) {
        throw UsageError("give -o SRC for rules or --table FILE for the vectors");
    }
    // Before hours of scanning: is all else right?
    auto const settings = learnSettings(line);
    auto const plan = pruningPlan(line);
    auto const before = s_textBefore(line.text("with"));
    requireWritable(output);
    requireWritable(tablePath);
    TrainingMailCounts counts;
    auto const table = gatherMail(mail, counts).m_sorted;
    if (!tablePath.empty()) {
        s_writeTable(tablePath, table);
    }
    if (!output.empty()) {
        auto const learned = s_learn(table, settings, plan);
        writeOutput(output,
                    before + Rules::learnedComment(table, settings, learned) + s_treeText(learned));
        s_report(learned, counts, table);
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
