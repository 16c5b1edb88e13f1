// SPDX-License-Identifier: Apache-2.0
//
// ScanRun: judges all messages of a command line and writes the results in the order of the input.
// One object per process; run is called once.
#pragma once

#include "apps/commandline/Output.h"
#include "apps/commandline/Progress.h"
#include "apps/commandline/Terminal.h"
#include "apps/host/HostSetup.h"
#include "apps/input/Inputs.h"
#include "apps/input/InputSize.h"
#include "apps/input/Interrupt.h"
#include "apps/input/OrderedPool.h"
#include "apps/qvscan/Extraction.h"
#include "apps/qvscan/Options.h"
#include "apps/qvscan/Summary.h"
#include "apps/qvscan/TextColumns.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Quorvane {

// The output for one message, and its effect on the exit status.
struct ScanResult {
    // Keeps the memory of a short output.
    void clear();

    std::string m_output;
    std::string m_errors;
    bool m_isSpam = false;
    int m_exitStatus = 0; // of a problem
    std::optional<MessageFigures> m_figures = {};
    // To be extracted; null: it is not.
    std::shared_ptr<MessageCopy const> m_copy = {};
};

class ScanRun {
  public:
    // Throws a ProgramError. `options` and `interrupt` outlive the object. `pagerRuns`: the
    // terminal belongs to a pager.
    ScanRun(ScanOptions const& options, HostSettings const& settings, Interrupt& interrupt,
            bool pagerRuns);

    // The exit status.
    int run();

  private:
    ScanResult judge(InputItem const& item) const;
    std::string heading() const;
    std::string render(std::string const& source, HeaderContainer const& headers,
                       ScanRecord const& record) const;
    bool take(ScanResult const& result, InputItem const& item);
    bool extract(ScanResult const& result, std::string const& source);
    bool showsProgress() const;
    bool mayShowSummary() const;
    bool showsSummary() const;
    RecordDepth depth() const;
    void count(ScanResult const& result, std::uint64_t position);
    void judgeAll();
    void startProgress();
    void reportNames();
    void reportWaiting();
    void reportLookups();
    void reportSummary();
    void note(int problem);
    int exitStatus() const;

    ScanOptions const& m_options;
    Interrupt& m_interrupt;
    bool m_pagerRuns;
    TextColumns const m_columns;
    std::optional<Extraction> m_extraction;
    std::shared_ptr<ScanHost const> m_host;
    Output m_output;
    Output m_errors;
    bool m_foundSpam = false;
    int m_problem = 0;
    std::uint64_t m_messages = 0; // judged, or with a problem
    std::unique_ptr<InputSize> m_size;
    std::unique_ptr<Progress> m_progress; // null: none is shown
    bool m_sharesTerminal = outputsShareTerminal();
    Summary m_summary;
};

} // namespace Quorvane
