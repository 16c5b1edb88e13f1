// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Learn.h"

#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/ProgressLine.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/learn/LearnedText.h"
#include "rules/learn/LearnError.h"
#include "rules/learn/TreeRecords.h"
#include "rules/learn/VectorCsvWriter.h"
#include "rules/model/Files.h"

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

std::string s_ruleText(LearnArguments const& arguments, Rules::VectorTable const& table,
                       Rules::LearnedTree const& learned) {
    std::string text;
    if (!arguments.m_with.empty()) {
        text = Rules::readFile(arguments.m_with);
        text += text.empty() || text.back() == '\n' ? "\n" : "\n\n";
    }
    text += Rules::learnedComment(table, learnSettings(arguments), learned);
    text += s_treeText(learned);
    auto const compiled = Rules::compileRules(text);
    if (!compiled.m_errors.empty()) {
        throw Rules::LearnError(Rules::showErrors(arguments.m_with, text, compiled.m_errors));
    }
    return text;
}

void s_report(Rules::LearnedTree const& learned, TrainingMailCounts const& counts,
              Rules::VectorTable const& table) {
    auto const total = table.total();
    std::cerr << "qvrules: learned " << learned.m_tree.writtenSize() << " nodes from "
              << total.m_spam << " spam and " << total.m_ham << " ham (" << table.rows().size()
              << " distinct vectors, " << counts.m_notJudgeable
              << " messages could not be judged and were left out)\n";
    if (learned.m_tree.leafCount() == 1) {
        std::cerr << "qvrules: no attribute tells this spam from this ham: the rules judge "
                     "nothing; learn from more mail or allow smaller support\n";
    }
}

// Empty when the command line makes sense.
std::string s_usageError(LearnArguments const& arguments, TrainingMail const& mail) {
    if (mail.isEmpty()) {
        return "learn: give training mail (--ham, --spam) or vectors (--vectors)";
    }
    if (arguments.m_output.empty() && arguments.m_table.empty()) {
        return "learn: give -o SRC for rules or --table FILE for the vectors";
    }
    return {};
}

Rules::LearnedTree s_learn(LearnArguments const& arguments, Rules::VectorTable const& table,
                           Workshop::ProgressLine& progress) {
    auto const tell = [&progress](std::size_t fold, std::size_t folds, std::string_view corpus) {
        progress.tick([&] {
            return "learning without " + std::string(corpus) + " (" + std::to_string(fold + 1) +
                   " of " + std::to_string(folds) + ")";
        });
    };
    return Rules::learnTree(table, learnSettings(arguments), pruningPlan(arguments), tell);
}

} // namespace

int learn(LearnArguments const& arguments) {
    auto const mail = trainingMail(arguments);
    if (auto const error = s_usageError(arguments, mail); !error.empty()) {
        std::cerr << error << '\n';
        return ExitStatus::usage;
    }
    // Before hours of scanning: are the words right?
    static_cast<void>(learnSettings(arguments));
    static_cast<void>(pruningPlan(arguments));
    Workshop::ProgressLine progress("qvrules");
    TrainingMailCounts counts;
    auto const table = gatherMail(mail, progress, counts).m_sorted;
    if (!arguments.m_table.empty()) {
        s_writeTable(arguments.m_table, table);
    }
    if (!arguments.m_output.empty()) {
        auto const learned = s_learn(arguments, table, progress);
        writeOutput(arguments.m_output, s_ruleText(arguments, table, learned));
        s_report(learned, counts, table);
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
