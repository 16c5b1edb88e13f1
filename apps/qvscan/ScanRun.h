// SPDX-License-Identifier: Apache-2.0
//
// ScanRun: judges all messages of a command line and writes what was found, in the order of input.
// One object a process; run is called once.
#pragma once

#include "apps/common/Inputs.h"
#include "apps/common/ScanHost.h"
#include "apps/qvscan/Options.h"
#include "apps/qvscan/OrderedPool.h"
#include "apps/qvscan/Output.h"

namespace Quorvane {

class ScanRun {
  public:
    // Throws a SettingsError.
    explicit ScanRun(ScanOptions const& options);

    // The exit status.
    int run();

  private:
    ScanResult judge(InputItem const& item) const;
    std::string render(std::string const& source, ScanOutcome const& outcome) const;
    bool take(ScanResult const& result);
    void note(int exitCode);
    int exitStatus() const;

    ScanOptions const& m_options;
    OutputFormat m_format;
    bool m_colour;
    ScanHost m_host;
    Output m_output;
    Output m_errors;
    bool m_foundSpam = false;
    int m_problem = 0;
};

} // namespace Quorvane
