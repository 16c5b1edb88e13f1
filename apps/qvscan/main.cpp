// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/qvscan/ScanRun.h"
#include "apps/settings/SettingSources.h"

#include <csignal>

namespace Quorvane {

namespace {

int s_run(CommandLine const& line) {
    if (line.has(showConfigRow.m_name)) {
        printOutput(scanSettings(line).asToml());
        return ExitStatus::ok;
    }
    auto const options = scanOptions(line);
    Interrupt interrupt;
    return ScanRun(options, interrupt).run();
}

} // namespace

} // namespace Quorvane

int main(int argc, char** argv) {
    using namespace Quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    return runProgram(scanTable(), argc, argv, s_run);
}
