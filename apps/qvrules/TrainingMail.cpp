// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/TrainingMail.h"

#include "apps/commandline/Progress.h"
#include "apps/qvrules/CorpusPath.h"
#include "apps/workshop/MailVectors.h"
#include "rules/model/RuleError.h"
#include "rules/vectors/VectorCsv.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

namespace Quorvane::RulesApp {

namespace {

// What is made of the messages of one list of inputs.
struct Heap {
    Rules::VectorTableBuilder& m_table;
    Rules::SampleSources& m_samples;
    Rules::MailLabel m_label;
};

class TrainingMailReader {
  public:
    TrainingMailReader(TrainingMail const& mail, TrainingMailCounts& counts)
        : m_mail(mail), m_counts(counts) {}

    Rules::ComparedMail read() {
        readMessages(m_mail.m_paths.m_ham,
                     {m_sorted, m_found.m_sortedSamples, Rules::MailLabel::ham});
        readMessages(m_mail.m_paths.m_spam,
                     {m_sorted, m_found.m_sortedSamples, Rules::MailLabel::spam});
        readMessages(m_mail.m_paths.m_unsorted,
                     {m_unsorted, m_found.m_unsortedSamples, Rules::MailLabel::ham});
        m_scanner.reset(); // signals are its own as long as it lives
        readTables(m_mail.m_paths.m_vectors, std::nullopt, m_sorted);
        readTables(m_mail.m_paths.m_hamVectors, Rules::MailLabel::ham, m_sorted);
        readTables(m_mail.m_paths.m_spamVectors, Rules::MailLabel::spam, m_sorted);
        readTables(m_mail.m_paths.m_unsortedVectors, Rules::MailLabel::ham, m_unsorted);
        m_found.m_sorted = m_sorted.finish();
        m_found.m_unsorted = m_unsorted.finish();
        return std::move(m_found);
    }

  private:
    void readMessages(std::vector<std::string> const& paths, Heap heap) {
        if (paths.empty()) {
            return;
        }
        if (!m_scanner) {
            m_scanner = std::make_unique<Workshop::MailVectors>(m_mail.m_host,
                                                                m_mail.m_copies != Copies::none);
            m_progress.emplace("qvrules"); // its thread leaves signals to the scanner
        }
        for (auto const& text : paths) {
            auto const input = readCorpusPath(text);
            m_scanner->scan({input.m_path}, [&](Workshop::MailVector const& mail) {
                add(mail, heap, input.m_corpus);
            });
        }
    }

    void add(Workshop::MailVector const& mail, Heap const& heap, std::string const& corpus) {
        ++m_counts.m_messages;
        if (mail.m_vector) {
            heap.m_table.add(*mail.m_vector, heap.m_label, corpus);
            keepSample(heap.m_samples[{*mail.m_vector, heap.m_label}], mail.m_source);
        } else {
            ++m_counts.m_notJudgeable;
            heap.m_table.addUnjudged(heap.m_label, corpus);
        }
        if (mail.m_withoutReverseName) {
            ++m_counts.m_copies;
            bool const apart = m_mail.m_copies == Copies::apart;
            heap.m_table.add(*mail.m_withoutReverseName, heap.m_label,
                             apart ? corpus + ", no reverse names" : corpus);
        }
        m_progress->update(m_counts.m_messages);
    }

    static void keepSample(std::vector<std::string>& sources, std::string const& source) {
        if (sources.size() < Rules::Deciders::maxSamples) {
            sources.push_back(source);
        }
    }

    void readTables(std::vector<std::string> const& paths, std::optional<Rules::MailLabel> label,
                    Rules::VectorTableBuilder& table) {
        for (auto const& text : paths) {
            auto const input = readCorpusPath(text);
            if (input.m_path == "-") {
                readTable(std::cin, "standard input", {label, input.m_corpus}, table);
                continue;
            }
            std::ifstream file(input.m_path, std::ios::binary);
            if (!file) {
                throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                                       input.m_path +
                                           ": cannot be opened: " + std::strerror(errno));
            }
            readTable(file, input.m_path, {label, input.m_corpus}, table);
        }
    }

    // A folder opens like a file and then fails to read.
    void readTable(std::istream& stream, std::string const& name,
                   Rules::VectorCsvDefaults const& defaults, Rules::VectorTableBuilder& table) {
        if (!m_progress) {
            m_progress.emplace("qvrules");
        }
        m_progress->begin("rows of " + name);
        auto const report = [this](std::uint64_t rows) { m_progress->update(rows); };
        try {
            auto const counts = Rules::readVectorCsv(stream, name, defaults, table, report);
            m_counts.m_notJudgeable += counts.m_withoutVector;
        } catch (std::ios_base::failure const& error) {
            throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                                   name + ": cannot be read: " + error.code().message());
        }
    }

    TrainingMail const& m_mail;
    TrainingMailCounts& m_counts;
    Rules::VectorTableBuilder m_sorted;
    Rules::VectorTableBuilder m_unsorted;
    Rules::ComparedMail m_found;
    std::unique_ptr<Workshop::MailVectors> m_scanner;
    std::optional<Progress> m_progress;
};

} // namespace

bool MailPaths::isEmpty() const {
    return m_ham.empty() && m_spam.empty() && m_vectors.empty() && m_hamVectors.empty() &&
           m_spamVectors.empty() && m_unsorted.empty() && m_unsortedVectors.empty();
}

MailPaths mailPaths(CommandLine const& line) {
    return {line.texts("ham"),         line.texts("spam"),         line.texts("vectors"),
            line.texts("ham-vectors"), line.texts("spam-vectors"), line.texts("on"),
            line.texts("on-vectors")};
}

Rules::ComparedMail gatherMail(TrainingMail const& mail, TrainingMailCounts& counts) {
    return TrainingMailReader(mail, counts).read();
}

Rules::ComparedMail gatherMessages(TrainingMail const& mail, TrainingMailCounts& counts) {
    auto gathered = gatherMail(mail, counts);
    if (gathered.m_sorted.corpora().empty() && gathered.m_unsorted.corpora().empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::badData,
                               "no messages in what was given: nothing to measure");
    }
    return gathered;
}

} // namespace Quorvane::RulesApp
