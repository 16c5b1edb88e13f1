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
    TrainingMailReader(TrainingMail const& mail, Workshop::ProgressLine& progress,
                       TrainingMailCounts& counts, Rules::SampleSources* samples)
        : m_mail(mail), m_progress(progress), m_counts(counts), m_samples(samples) {}

    Rules::VectorTable read() {
        readMessages(m_mail.m_ham, Rules::MailLabel::ham);
        readMessages(m_mail.m_spam, Rules::MailLabel::spam);
        m_scanner.reset(); // signals are its own as long as it lives
        readTables(m_mail.m_vectors, std::nullopt);
        readTables(m_mail.m_hamVectors, Rules::MailLabel::ham);
        readTables(m_mail.m_spamVectors, Rules::MailLabel::spam);
        return m_table.finish();
    }

  private:
    void readMessages(std::vector<std::string> const& paths, Rules::MailLabel label) {
        if (paths.empty()) {
            return;
        }
        if (!m_scanner) {
            m_scanner = std::make_unique<Workshop::MailVectors>(m_mail.m_host,
                                                                m_mail.m_copies != Copies::none);
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
            keepSample(*mail.m_vector, label, mail.m_source);
        } else {
            ++m_counts.m_notJudgeable;
            m_table.addUnjudged(label, corpus);
        }
        if (mail.m_withoutReverseName) {
            ++m_counts.m_copies;
            bool const apart = m_mail.m_copies == Copies::apart;
            m_table.add(*mail.m_withoutReverseName, label,
                        apart ? corpus + ", no reverse names" : corpus);
        }
        m_progress.tick([&] { return std::to_string(m_counts.m_messages) + " messages scanned"; });
    }

    void keepSample(Rules::AttributeVector const& vector, Rules::MailLabel label,
                    std::string const& source) {
        if (m_samples == nullptr) {
            return;
        }
        auto& sources = (*m_samples)[{vector, label}];
        if (sources.size() < Rules::Deciders::maxSamples) {
            sources.push_back(source);
        }
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

    TrainingMail const& m_mail;
    Workshop::ProgressLine& m_progress;
    TrainingMailCounts& m_counts;
    Rules::SampleSources* m_samples;
    Rules::VectorTableBuilder m_table;
    std::unique_ptr<Workshop::MailVectors> m_scanner;
};

} // namespace

bool TrainingMail::isEmpty() const {
    return m_ham.empty() && m_spam.empty() && m_vectors.empty() && m_hamVectors.empty() &&
           m_spamVectors.empty();
}

Rules::VectorTable readTrainingMail(TrainingMail const& mail, Workshop::ProgressLine& progress,
                                    TrainingMailCounts& counts, Rules::SampleSources* samples) {
    try {
        return TrainingMailReader(mail, progress, counts, samples).read();
    } catch (SettingsError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules, error.what());
    }
}

} // namespace Quorvane::RulesApp
