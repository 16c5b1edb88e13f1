// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/TrainingMail.h"

#include "apps/common/SettingsTable.h"
#include "apps/qvrules/CorpusPath.h"
#include "apps/workshop/MailVectors.h"
#include "rules/learn/VectorCsv.h"
#include "rules/model/RuleError.h"

#include <fstream>
#include <iostream>
#include <memory>

namespace Quorvane::RulesApp {

namespace {

class TrainingMailReader {
  public:
    TrainingMailReader(LearnArguments const& arguments, Workshop::ProgressLine& progress,
                       TrainingMailCounts& counts)
        : m_arguments(arguments), m_progress(progress), m_counts(counts) {}

    Rules::VectorTable read() {
        readMessages(m_arguments.m_ham, Rules::MailLabel::ham);
        readMessages(m_arguments.m_spam, Rules::MailLabel::spam);
        m_scanner.reset(); // signals are its own as long as it lives
        readTables(m_arguments.m_vectors, std::nullopt);
        readTables(m_arguments.m_hamVectors, Rules::MailLabel::ham);
        readTables(m_arguments.m_spamVectors, Rules::MailLabel::spam);
        return m_table.finish();
    }

  private:
    void readMessages(std::vector<std::string> const& paths, Rules::MailLabel label) {
        if (paths.empty()) {
            return;
        }
        if (!m_scanner) {
            m_scanner = std::make_unique<Workshop::MailVectors>(scanSettings(m_arguments),
                                                                !m_arguments.m_augment.empty());
        }
        for (auto const& text : paths) {
            auto const input = readCorpusPath(text);
            m_scanner->scan({input.m_path}, [&](Workshop::MailVector const& mail) {
                add(mail, label, input.m_corpus);
            });
        }
    }

    void add(Workshop::MailVector const& mail, Rules::MailLabel label, std::string const& corpus) {
        ++m_counts.m_messages;
        if (mail.m_vector) {
            m_table.add(*mail.m_vector, label, corpus);
        } else {
            ++m_counts.m_notJudgeable;
            m_table.addUnjudged(label, corpus);
        }
        if (mail.m_withoutReverseName) {
            ++m_counts.m_copies;
            m_table.add(*mail.m_withoutReverseName, label, corpus);
        }
        m_progress.tick([&] { return std::to_string(m_counts.m_messages) + " messages scanned"; });
    }

    void readTables(std::vector<std::string> const& paths, std::optional<Rules::MailLabel> label) {
        for (auto const& text : paths) {
            auto const input = readCorpusPath(text);
            if (input.m_path == "-") {
                readTable(std::cin, "standard input", {label, input.m_corpus});
                continue;
            }
            std::ifstream file(input.m_path, std::ios::binary);
            if (!file) {
                throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                                       input.m_path + ": cannot be opened");
            }
            readTable(file, input.m_path, {label, input.m_corpus});
        }
    }

    void readTable(std::istream& stream, std::string const& name,
                   Rules::VectorCsvDefaults const& defaults) {
        auto const counts =
            Rules::readVectorCsv(stream, name, defaults, m_table, [&](std::uint64_t rows) {
                m_progress.tick([&] { return name + ": " + std::to_string(rows) + " rows read"; });
            });
        m_counts.m_notJudgeable += counts.m_withoutVector;
    }

    LearnArguments const& m_arguments;
    Workshop::ProgressLine& m_progress;
    TrainingMailCounts& m_counts;
    Rules::VectorTableBuilder m_table;
    std::unique_ptr<Workshop::MailVectors> m_scanner;
};

} // namespace

Rules::VectorTable readTrainingMail(LearnArguments const& arguments,
                                    Workshop::ProgressLine& progress, TrainingMailCounts& counts) {
    try {
        return TrainingMailReader(arguments, progress, counts).read();
    } catch (SettingsError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules, error.what());
    }
}

} // namespace Quorvane::RulesApp
