// SPDX-License-Identifier: Apache-2.0
//
// ScanRun: judges all messages of a command line and writes the results in the order of the input.
// One object per process; run is called once.
#pragma once

#include "apps/commandline/Progress.h"
#include "apps/host/HostSetup.h"
#include "apps/input/Inputs.h"
#include "apps/input/InputSize.h"
#include "apps/input/Interrupt.h"
#include "apps/input/OrderedPool.h"
#include "apps/qvscan/Options.h"
#include "apps/qvscan/Output.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Quorvane {

// The output for one message, and its effect on the exit status.
struct ScanResult {
    std::string m_output;
    std::string m_errors;
    bool m_isSpam = false;
    int m_exitStatus = 0; // of a problem
};

class ScanRun {
  public:
    // Throws a SettingsError. `options` and `interrupt` outlive the object.
    ScanRun(ScanOptions const& options, Interrupt& interrupt);

    // The exit status.
    int run();

  private:
    ScanResult judge(InputItem const& item) const;
    std::string render(InputItem const& item, ScanRecord const& record) const;
    void submitAll(OrderedPool& pool);
    bool take(ScanResult const& result);
    bool showsProgress() const;
    void startProgress();
    void reportWaiting();
    void reportLookups();
    void note(int problem);
    int exitStatus() const;

    ScanOptions const& m_options;
    Interrupt& m_interrupt;
    OutputFormat m_format;
    bool m_colour;
    std::shared_ptr<ScanHost const> m_host;
    Output m_output;
    Output m_errors;
    bool m_foundSpam = false;
    int m_problem = 0;
    std::uint64_t m_messages = 0; // judged, or with a problem
    std::unique_ptr<InputSize> m_size;
    std::unique_ptr<Progress> m_progress; // null: none is shown
};

} // namespace Quorvane
