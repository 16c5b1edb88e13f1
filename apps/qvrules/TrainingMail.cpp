// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/TrainingMail.h"

#include "apps/commandline/Progress.h"
#include "apps/input/InputName.h"
#include "apps/input/InputSize.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/MailVectors.h"
#include "rules/model/RuleError.h"
#include "rules/vectors/VectorCsv.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

namespace Quorvane::RulesApp {

namespace {

struct CorpusPath {
    std::string m_corpus;
    std::string m_path;
};

std::string s_folderOf(std::string const& path) {
    if (path == "-") {
        return "stdin";
    }
    auto whole = std::filesystem::absolute(path).lexically_normal();
    if (!whole.has_filename()) {
        whole = whole.parent_path(); // it ended in a slash
    }
    return whole.parent_path().filename().string();
}

// The name of the corpus is what stands before the first '=', when there is no '/' in it. Otherwise
// it is the folder that the path lies in: ham and spam of one site are usually side by side.
CorpusPath s_corpusPath(std::string const& text) {
    auto const equals = text.find('=');
    if (equals != std::string::npos && equals > 0 && text.find('/') > equals) {
        return {text.substr(0, equals), text.substr(equals + 1)};
    }
    return {s_folderOf(text), text};
}

struct MailOption {
    char const* m_name;
    bool m_areVectors;
    bool m_isSorted;
    std::optional<Rules::MailLabel> m_label;
};

// Messages first: the scanner that reads them keeps signals to itself.
constexpr MailOption mailOptions[] = {
    {"ham", false, true, Rules::MailLabel::ham},
    {"spam", false, true, Rules::MailLabel::spam},
    {"on", false, false, Rules::MailLabel::ham},
    {"vectors", true, true, std::nullopt},
    {"ham-vectors", true, true, Rules::MailLabel::ham},
    {"spam-vectors", true, true, Rules::MailLabel::spam},
    {"on-vectors", true, false, Rules::MailLabel::ham},
};

class TrainingMailReader {
  public:
    TrainingMailReader(TrainingMail const& mail, TrainingMailCounts& counts)
        : m_mail(mail), m_counts(counts) {}

    Rules::ComparedMail read() {
        for (auto const& inputs : m_mail.m_inputs) {
            requirePaths(inputs);
        }
        for (auto const& inputs : m_mail.m_inputs) {
            inputs.m_areVectors ? readTables(inputs) : readMessages(inputs);
        }
        reportLeftOut();
        m_found.m_sorted = m_sorted.finish();
        m_found.m_unsorted = m_unsorted.finish();
        return std::move(m_found);
    }

  private:
    // A path that is mistyped shows at once, not after hours.
    static void requirePaths(MailInputs const& inputs) {
        for (auto const& text : inputs.m_paths) {
            auto const path = s_corpusPath(text).m_path;
            std::error_code error;
            if (path != "-" && !std::filesystem::exists(inputName(path).m_path, error)) {
                throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                                       path + ": cannot be opened: " + std::strerror(ENOENT));
            }
        }
    }

    void readMessages(MailInputs const& inputs) {
        if (!m_scanner) {
            m_scanner = std::make_unique<Workshop::MailVectors>(m_mail.m_host,
                                                                m_mail.m_copies != Copies::none);
            // Their threads leave signals to the scanner.
            m_size = std::make_unique<InputSize>(mailPaths());
            m_progress.emplace("qvrules", [this] { return m_size->bytes(); });
        }
        for (auto const& text : inputs.m_paths) {
            auto const input = s_corpusPath(text);
            auto const before = m_bytes;
            m_scanner->scan({input.m_path}, [&](Workshop::MailVector const& mail) {
                m_bytes = before + mail.m_position;
                m_progress->doneTo(m_bytes);
                add(mail, inputs, input.m_corpus);
            });
        }
    }

    // All inputs of messages.
    std::vector<std::string> mailPaths() const {
        std::vector<std::string> paths;
        for (auto const& inputs : m_mail.m_inputs) {
            for (auto const& text : inputs.m_paths) {
                if (!inputs.m_areVectors) {
                    paths.push_back(s_corpusPath(text).m_path);
                }
            }
        }
        return paths;
    }

    void add(Workshop::MailVector const& mail, MailInputs const& inputs,
             std::string const& corpus) {
        if (!mail.m_problem.empty()) {
            leaveOut(mail);
            return;
        }
        if (mail.m_hasFailedLookup) {
            ++m_counts.m_failedLookups;
            return;
        }
        auto& table = tableOf(inputs);
        auto& samples = inputs.m_isSorted ? m_found.m_sortedSamples : m_found.m_unsortedSamples;
        auto const label = inputs.m_label.value_or(Rules::MailLabel::ham);
        ++m_counts.m_messages;
        if (mail.m_vector) {
            table.add(*mail.m_vector, label, corpus);
            keepSample(samples[{*mail.m_vector, label}], mail.m_source);
        } else {
            ++m_counts.m_notJudgeable;
            table.addUnjudged(label, corpus);
        }
        if (mail.m_withoutReverseName) {
            ++m_counts.m_copies;
            bool const apart = m_mail.m_copies == Copies::apart;
            table.add(*mail.m_withoutReverseName, label,
                      apart ? corpus + ", no reverse names" : corpus);
        }
        m_progress->update(m_counts.m_messages);
    }

    void leaveOut(Workshop::MailVector const& mail) {
        m_counts.m_leftOutStatus = m_counts.exitStatus(mail.m_exitStatus);
        ++m_counts.m_leftOut;
        m_progress->clear();
        std::cerr << toPrintable(mail.m_source + ": " + mail.m_problem) << '\n';
    }

    void reportLeftOut() const {
        if (m_counts.m_leftOut != 0) {
            std::cerr << "qvrules: " << m_counts.m_leftOut
                      << (m_counts.m_leftOut == 1 ? " input was" : " inputs were") << " left out\n";
        }
        if (auto const count = m_counts.m_failedLookups; count != 0) {
            std::cerr << "qvrules: left out " << count << (count == 1 ? " message" : " messages")
                      << " whose DNS look-ups failed or came too late: run it again, or raise "
                         "--dns-timeout\n";
        }
    }

    static void keepSample(std::vector<std::string>& sources, std::string const& source) {
        if (sources.size() < Rules::Deciders::maxSamples) {
            sources.push_back(source);
        }
    }

    Rules::VectorTableBuilder& tableOf(MailInputs const& inputs) {
        return inputs.m_isSorted ? m_sorted : m_unsorted;
    }

    void readTables(MailInputs const& inputs) {
        m_scanner.reset(); // signals are its own as long as it lives
        for (auto const& text : inputs.m_paths) {
            auto const input = s_corpusPath(text);
            if (input.m_path == "-") {
                readTable(std::cin, "standard input", {inputs.m_label, input.m_corpus},
                          tableOf(inputs));
                continue;
            }
            std::ifstream file(input.m_path, std::ios::binary);
            if (!file) {
                throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                                       input.m_path +
                                           ": cannot be opened: " + std::strerror(errno));
            }
            readTable(file, input.m_path, {inputs.m_label, input.m_corpus}, tableOf(inputs));
        }
    }

    // A folder can be opened like a file; reading it fails.
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
    std::unique_ptr<InputSize> m_size;
    std::uint64_t m_bytes = 0; // of mail, done
    std::optional<Progress> m_progress;
};

} // namespace

std::vector<MailInputs> mailInputs(CommandLine const& line) {
    std::vector<MailInputs> inputs;
    for (auto const& option : mailOptions) {
        if (line.has(option.m_name)) {
            inputs.push_back({line.texts(option.m_name), option.m_areVectors, option.m_isSorted,
                              option.m_label});
        }
    }
    return inputs;
}

Rules::ComparedMail gatherMail(TrainingMail const& mail, TrainingMailCounts& counts) {
    return TrainingMailReader(mail, counts).read();
}

Rules::ComparedMail gatherMessages(TrainingMail const& mail, TrainingMailCounts& counts) {
    auto gathered = gatherMail(mail, counts);
    if (gathered.m_sorted.corpora().empty() && gathered.m_unsorted.corpora().empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::badData,
                               "the inputs hold no messages: nothing to measure");
    }
    return gathered;
}

} // namespace Quorvane::RulesApp
