// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/qvscan/ScanRun.h"

#include <csignal>

namespace Quorvane {

namespace {

int s_run(CommandLine const& line) {
    auto const options = scanOptions(line);
    if (line.has("show-config")) {
        printOutput(options.m_settings.asToml());
        return ExitStatus::ok;
    }
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
