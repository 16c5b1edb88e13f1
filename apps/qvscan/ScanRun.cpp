// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/ScanRun.h"

#include "apps/commandline/ProgramError.h"
#include "apps/headers/ReceivedDate.h"
#include "apps/host/LookupEnd.h"
#include "apps/input/OrderedPool.h"
#include "apps/input/PooledInputs.h"
#include "apps/qvscan/VerdictCsv.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/ScanText.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "rules/vectors/VectorCsv.h"

#include <cstring>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Quorvane {

namespace {

// What the output shows has to be asked for.
HostSettings s_settings(ScanOptions const& options, HostSettings settings) {
    if (options.m_explain || options.m_format == OutputFormat::csv) {
        settleDns(settings, true);
    }
    return settings;
}

ScanResult s_problem(std::string const& source, std::string const& text, int status) {
    ScanResult result;
    result.m_errors = "qvscan: " + toPrintable(source) + ": " + toPrintable(text) + "\n";
    result.m_exitStatus = status;
    return result;
}

// What is longer is not kept.
constexpr std::size_t maxKeptBytes = std::size_t{8} << 10;

} // namespace

void ScanResult::clear() {
    auto output = std::move(m_output);
    *this = ScanResult();
    if (output.capacity() <= maxKeptBytes) {
        m_output = std::move(output);
        m_output.clear();
    }
}

ScanRun::ScanRun(ScanOptions const& options, HostSettings const& settings, Interrupt& interrupt,
                 bool pagerRuns)
    : m_options(options), m_interrupt(interrupt), m_pagerRuns(pagerRuns),
      m_columns(options.m_columns, options.m_width, options.m_colour),
      m_host(setUpHost(s_settings(options, settings), "--root, or root in the settings file,")),
      m_output(STDOUT_FILENO), m_errors(STDERR_FILENO) {
    if (!options.m_extractTo.empty()) {
        m_extraction.emplace(options.m_extractTo);
    }
}

// The line before all results. An explanation needs none.
std::string ScanRun::heading() const {
    switch (m_options.m_format) {
    case OutputFormat::json:
        return {};
    case OutputFormat::csv:
        return Rules::csvHeader() + "\n";
    case OutputFormat::verdictCsv:
        return verdictCsvHeader();
    case OutputFormat::text:
        break;
    }
    return m_options.m_explain ? "" : m_columns.heading();
}

std::string ScanRun::render(std::string const& source, HeaderContainer const& headers,
                            ScanRecord const& record) const {
    auto const& settings = m_host->settings().m_judging;
    auto const& names = m_host->ruleNames();
    switch (m_options.m_format) {
    case OutputFormat::json:
        return m_options.m_explain ? jsonExplanation(source, headers, record, settings, names)
                                   : jsonRecord(source, headers, record, names);
    case OutputFormat::csv:
        return Rules::csvField(source) +
               Rules::csvValues(record.isJudged() ? std::optional(record.attributes)
                                                  : std::nullopt) +
               "\n";
    case OutputFormat::verdictCsv:
        return verdictCsvLine({source, identityOf(headers), receivedDate(headers), record, names});
    case OutputFormat::text:
        break;
    }
    if (!m_options.m_explain) {
        return m_columns.line({source, identityOf(headers), receivedDate(headers), record, names});
    }
    auto const length = m_options.m_explainsAll ? ExplainLength::full : ExplainLength::brief;
    return forTerminal(
        textExplain({source, headers, record, settings, names}, length, m_options.m_colour),
        m_options.m_width);
}

ScanResult ScanRun::judge(InputItem const& item) const {
    if (!item.m_problem.empty()) {
        return s_problem(item.m_source, item.m_problem, item.m_exitStatus);
    }
    auto const headers = m_host->read(item.m_headers);
    ScanResult result;
    if (!m_options.m_filter.isInPeriod(headers)) {
        return result;
    }
    auto const record = m_host->scan(headers, m_options.m_facts, depth());
    result.m_isSpam = record.verdict.isSpam;
    if (mayShowSummary()) {
        result.m_figures = figuresOf(record, m_host->settings().m_judging);
    }
    if (m_options.m_filter.letsThrough(record)) {
        result.m_output = render(item.m_source, headers, record);
        result.m_copy = item.m_copy;
    }
    return result;
}

bool ScanRun::take(ScanResult const& result, InputItem const& item) {
    m_foundSpam = m_foundSpam || result.m_isSpam;
    note(result.m_exitStatus);
    ++m_messages;
    count(result, item.m_position);
    m_errors.write(result.m_errors);
    return m_output.write(result.m_output) && extract(result, item.m_source);
}

// A record that is written elsewhere leaves the progress line alone.
void ScanRun::count(ScanResult const& result, std::uint64_t position) {
    if (m_progress) {
        m_progress->update(m_messages);
        m_progress->doneTo(position);
        if (m_sharesTerminal || !result.m_errors.empty()) {
            m_progress->clear();
        }
    }
    if (result.m_exitStatus != 0) {
        m_summary.addProblem();
    } else if (result.m_figures) {
        m_summary.add(*result.m_figures);
    }
}

// False when no message can be extracted any more.
bool ScanRun::extract(ScanResult const& result, std::string const& source) {
    return result.m_copy == nullptr || m_extraction->write(*result.m_copy, m_messages, source);
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
    if (m_output.error() != 0 || (m_extraction && !m_extraction->error().empty())) {
        return ExitStatus::cannotWrite;
    }
    if (m_problem != 0) {
        return m_problem;
    }
    return m_foundSpam ? ExitStatus::findings : ExitStatus::ok;
}

bool ScanRun::showsProgress() const {
    return m_options.m_progress.value_or(::isatty(STDERR_FILENO) == 1 && !m_pagerRuns);
}

// Nobody knows before the end whether there is more than one message.
bool ScanRun::mayShowSummary() const {
    return m_options.m_summary.value_or(::isatty(STDERR_FILENO) == 1);
}

bool ScanRun::showsSummary() const {
    return m_options.m_summary.value_or(mayShowSummary() && m_messages > 1);
}

// A summary says why messages were not judged, which takes the steps.
RecordDepth ScanRun::depth() const {
    return m_options.m_explain ? RecordDepth::alternatives
           : mayShowSummary()  ? RecordDepth::steps
                               : RecordDepth::result;
}

void ScanRun::startProgress() {
    if (showsProgress()) {
        m_size = std::make_unique<InputSize>(m_options.m_paths);
        m_progress = std::make_unique<Progress>("qvscan", [this] { return m_size->bytes(); });
    }
}

void ScanRun::reportNames() {
    if (auto const& problem = m_host->namesProblem(); !problem.empty()) {
        m_errors.write("qvscan: " + toPrintable(problem) + "; rules are shown without names\n");
    }
}

// A program that waits silently seems to hang.
void ScanRun::reportWaiting() {
    if (isTyped(m_options.m_paths)) {
        m_errors.write("qvscan: waiting for a message on standard input; Ctrl-D ends it, and "
                       "qvscan --help shows the options\n");
    }
}

// A failed look-up counts as a name that does not exist, which can change a verdict.
void ScanRun::reportLookups() {
    auto const text = failedLookupsText(Resolver::instance().counters());
    if (m_interrupt.signalNumber() == 0 && showsProgress() && !text.empty()) {
        m_errors.write("qvscan: " + text);
    }
}

// A program that asks for it reads it after the records; a person, where the pager is read, or else
// apart from them.
void ScanRun::reportSummary() {
    Summary::Run const run{m_host->ruleNames(), m_host->ruleVersion(),
                           Resolver::instance().counters()};
    if (m_options.m_summary && m_options.m_format == OutputFormat::json) {
        m_output.write(m_summary.json(run));
    } else {
        (m_pagerRuns ? m_output : m_errors).write("\n" + m_summary.text(run));
    }
}

// A result is copied into its place and stays there, so that its memory serves again.
void ScanRun::judgeAll() {
    auto const jobs = m_host->settings().m_jobs;
    PooledInputs inputs(m_options.m_paths, m_interrupt, m_host->settings().m_limits,
                        m_extraction ? std::optional<std::filesystem::path>(m_options.m_extractTo)
                                     : std::nullopt);
    std::vector<ScanResult> results(OrderedPool::places(jobs));
    OrderedPool pool(jobs,
                     {[&](InputItem const& item, std::size_t place) {
                          auto const result = judge(item);
                          results[place] = result;
                      },
                      [&](InputItem const& item, std::size_t place) {
                          bool const isGoingOn = take(results[place], item);
                          results[place].clear();
                          return isGoingOn;
                      },
                      inputs.source([this](std::uint64_t count) {
                          if (m_progress) {
                              m_progress->expect(count);
                          }
                      })},
                     m_interrupt.token());
    pool.finish();
}

int ScanRun::run() {
    m_output.write(heading());
    reportNames();
    reportWaiting();
    startProgress();
    LookupEnd const lookupEnd(m_interrupt.token());
    judgeAll();
    m_progress.reset();
    if (showsSummary()) {
        reportSummary();
    } else {
        reportLookups();
    }
    if (m_output.error() != 0) {
        m_errors.write(std::string("qvscan: cannot write: ") + std::strerror(m_output.error()) +
                       "\n");
    }
    if (m_extraction && !m_extraction->error().empty()) {
        m_errors.write("qvscan: " + toPrintable(m_extraction->error()) + "\n");
    }
    return exitStatus();
}

} // namespace Quorvane
