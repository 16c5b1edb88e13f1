// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Progress.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/settings/SettingValue.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/learn/Learner.h"
#include "rules/learn/TreeRecords.h"
#include "rules/model/Files.h"
#include "rules/vectors/LearnError.h"
#include "rules/vectors/VectorCsv.h"

#include <iostream>
#include <sstream>

namespace Quorvane::RulesApp {

namespace {

// Names in old mail may no longer exist, which the tree would learn.
void s_turnLookupsOff(CommandLine const& line, HostSettings& host) {
    if (line.text("dns", "off") != "off" || line.has("dns-data")) {
        throw UsageError("--dns and --dns-data need --lookups");
    }
    host.m_dns = "off";
}

// Keeps the default if nothing is given.
template<typename Number>
void s_readNumber(CommandLine const& line, std::string const& name, Number& number) {
    try {
        if (line.has(name)) {
            readSetting(line.text(name), number);
        }
    } catch (SettingsError const& error) {
        throw UsageError("--" + name + ": " + error.what());
    }
}

Rules::LearnSettings s_settings(CommandLine const& line) {
    Rules::LearnSettings settings;
    settings.m_impurity =
        line.text("impurity") == "gini" ? Rules::ImpurityKind::gini : Rules::ImpurityKind::entropy;
    s_readNumber(line, "min-node-support", settings.m_minSupport);
    s_readNumber(line, "min-gain", settings.m_minGain);
    s_readNumber(line, "max-nodes", settings.m_maxNodes);
    if (line.has("lookups")) {
        settings.m_attributes.fill(true);
    }
    try {
        for (auto const& name : line.texts("exclude")) {
            Rules::selectAttribute(settings.m_attributes, name, false);
        }
        Rules::checkSettings(settings);
    } catch (Rules::LearnError const& error) {
        throw UsageError(error.what()); // here the command line is wrong
    }
    return settings;
}

Rules::PruningPlan s_pruning(CommandLine const& line) {
    auto const text = line.text("prune", "minimum");
    if (text == "minimum") {
        return Rules::PruningRule::minimum;
    }
    if (text == "one-se") {
        return Rules::PruningRule::oneStandard;
    }
    if (text == "none") {
        return 0.0;
    }
    double alpha = -1.0;
    try {
        readSetting(text, alpha);
    } catch (SettingsError const&) {
        // It is refused below.
    }
    if (!(alpha >= 0.0)) {
        throw UsageError("--prune takes minimum, one-se, none or a number from 0 on, not '" + text +
                         "'");
    }
    return alpha;
}

TrainingMail s_trainingMail(CommandLine const& line) {
    TrainingMail mail{mailInputs(line), line.has("augment") ? Copies::together : Copies::none,
                      hostSettings(line)};
    if (!line.has("lookups")) {
        s_turnLookupsOff(line, mail.m_host);
    }
    return mail;
}

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

// The text before the learned tree; empty without --with.
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
        throw Rules::LearnError(path +
                                ": it already has a tree; --with takes rules without one, to "
                                "put them before the learned tree");
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
        std::cerr << "qvrules: no attribute separates this spam from this ham, so the rules "
                     "judge nothing; use more mail or a smaller --min-node-support\n";
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
    auto const mail = s_trainingMail(line);
    auto const output = line.text("output");
    auto const tablePath = line.text("table");
    if (mail.m_inputs.empty()) {
        throw UsageError("give training mail (--ham, --spam) or vectors (--vectors)");
    }
    if (output.empty() && tablePath.empty()) {
        throw UsageError("give -o SRC for rules or --table FILE for the vectors");
    }
    // Check everything else before hours of scanning.
    auto const settings = s_settings(line);
    auto const plan = s_pruning(line);
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
