// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/ScanRun.h"

#include "apps/commandline/ProgramError.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/ScanText.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "rules/vectors/VectorCsv.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace Quorvane {

namespace {

OutputFormat s_format(ScanOptions const& options) {
    bool const isTerminal = ::isatty(STDOUT_FILENO) == 1;
    return options.m_format.value_or(isTerminal ? OutputFormat::text : OutputFormat::json);
}

// no-color.org: any value but the empty one requests plain text.
bool s_wantsColour() {
    auto const* const noColour = std::getenv("NO_COLOR");
    return (noColour == nullptr || *noColour == '\0') && ::isatty(STDOUT_FILENO) == 1;
}

ScanResult s_problem(std::string const& source, std::string const& text, int status) {
    ScanResult result;
    result.m_errors = "qvscan: " + toPrintable(source) + ": " + toPrintable(text) + "\n";
    result.m_exitStatus = status;
    return result;
}

} // namespace

ScanRun::ScanRun(ScanOptions const& options, Interrupt& interrupt)
    : m_options(options), m_interrupt(interrupt), m_format(s_format(options)),
      m_colour(s_wantsColour()), m_host(setUpHost(options.m_settings.values())),
      m_output(STDOUT_FILENO), m_errors(STDERR_FILENO) {}

std::string ScanRun::render(InputItem const& item, ScanRecord const& record) const {
    auto const& settings = m_host->settings().m_judging;
    switch (m_format) {
    case OutputFormat::json:
        return m_options.m_explain ? jsonExplanation(item.m_source, record, settings)
                                   : jsonRecord(item.m_source, record);
    case OutputFormat::csv:
        return Rules::csvField(item.m_source) +
               (record.isJudged() ? Rules::csvValues(record.attributes)
                                  : std::string(attributeCount, ',')) +
               "\n";
    case OutputFormat::text:
        break;
    }
    auto const text = textRecord(item.m_source, record, m_colour);
    return m_options.m_explain ? text + textExplain(record, settings) : text;
}

ScanResult ScanRun::judge(InputItem const& item) const {
    if (!item.m_problem.empty()) {
        return s_problem(item.m_source, item.m_problem, item.m_exitStatus);
    }
    auto const headers = HeaderReader::read(item.m_headers);
    if (headers.headers().empty()) {
        return s_problem(item.m_source, "not a message: it has no header field",
                         ExitStatus::badData);
    }
    auto const depth = m_options.m_explain ? RecordDepth::alternatives : RecordDepth::result;
    auto const record = m_host->scan(headers, m_options.m_facts, depth);
    ScanResult result;
    result.m_output = render(item, record);
    result.m_isSpam = record.verdict.isSpam;
    return result;
}

bool ScanRun::take(ScanResult const& result) {
    m_foundSpam = m_foundSpam || result.m_isSpam;
    note(result.m_exitStatus);
    ++m_messages;
    if (m_progress) {
        m_progress->update(m_messages);
        m_progress->clear();
    }
    m_errors.write(result.m_errors);
    return m_output.write(result.m_output);
}

// Of several problems the first one counts.
void ScanRun::note(int problem) {
    if (m_problem == 0) {
        m_problem = problem;
    }
}

int ScanRun::exitStatus() const {
    if (int const number = m_interrupt.signalNumber(); number != 0) {
        return ExitStatus::interrupted + number;
    }
    if (m_output.error() != 0) {
        return ExitStatus::cannotWrite;
    }
    if (m_problem != 0) {
        return m_problem;
    }
    return m_foundSpam ? ExitStatus::findings : ExitStatus::ok;
}

bool ScanRun::showsProgress() const {
    return m_options.m_progress.value_or(::isatty(STDERR_FILENO) == 1);
}

void ScanRun::startProgress() {
    if (showsProgress()) {
        m_size = std::make_unique<InputSize>(m_options.m_paths);
        m_progress = std::make_unique<Progress>("qvscan", [this] { return m_size->bytes(); });
    }
}

// A program that waits silently seems to hang.
void ScanRun::reportWaiting() {
    if (m_options.m_paths.empty() && ::isatty(STDIN_FILENO) == 1) {
        m_errors.write("qvscan: waiting for a message on standard input; Ctrl-D ends it, and "
                       "qvscan --help shows the options\n");
    }
}

// A failed look-up counts as a name that does not exist, which can change a verdict.
void ScanRun::reportLookups() {
    auto const counters = Resolver::instance().counters();
    if (showsProgress() && counters.m_failed + counters.m_late > 0) {
        m_errors.write("qvscan: DNS: " + std::to_string(counters.m_failed) +
                       " look-ups failed and " + std::to_string(counters.m_late) +
                       " came too late; their names count as not existing\n");
    }
}

void ScanRun::submitAll(OrderedPool& pool) {
    Inputs inputs(m_options.m_paths, m_interrupt);
    try {
        for (InputItem item; m_interrupt.signalNumber() == 0 && inputs.next(item);) {
            if (m_progress) {
                m_progress->readTo(inputs.position());
            }
            if (!pool.submit(std::move(item))) {
                return;
            }
        }
    } catch (Interrupted const&) {
        // What was submitted is still judged and written.
    }
}

int ScanRun::run() {
    if (m_format == OutputFormat::csv) {
        m_output.write(Rules::csvHeader() + "\n");
    }
    reportWaiting();
    startProgress();
    OrderedPool pool(m_host->settings().m_jobs, [this](InputItem const& item) {
        return [this, result = judge(item)] { return take(result); };
    });
    submitAll(pool);
    pool.finish();
    m_progress.reset();
    reportLookups();
    if (m_output.error() != 0) {
        m_errors.write(std::string("qvscan: cannot write: ") + std::strerror(m_output.error()) +
                       "\n");
    }
    return exitStatus();
}

} // namespace Quorvane
