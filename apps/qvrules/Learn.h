// SPDX-License-Identifier: Apache-2.0
//
// `qvrules learn`: training mail or counted vectors in, a rule text out.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/qvrules/TrainingMail.h"
#include "rules/learn/Learner.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

// The command line as given.
struct LearnArguments : MailPaths {
    std::string m_output; // rule text; "-": standard output
    std::string m_table;  // the counted vectors as CSV; "-": standard output
    // A rule text that is put before the learned tree as it is.
    std::string m_with;
    std::string m_augment;
    std::string m_impurity = "entropy";
    double m_minSupport = Rules::LearnSettings{}.m_minSupport;
    double m_minGain = 0.0;
    int m_maxNodes = Rules::maxLearnedNodes;
    std::string m_prune = "minimum";
    std::vector<std::string> m_exclude;
    bool m_lookups = false;
    HostSettings m_host;
};

// Throws a UsageError.
LearnArguments learnArguments(CommandLine const& line);

// What the words of the arguments mean.
Rules::LearnSettings learnSettings(LearnArguments const& arguments);
Rules::PruningPlan pruningPlan(LearnArguments const& arguments);
TrainingMail trainingMail(LearnArguments const& arguments);

} // namespace Quorvane::RulesApp
