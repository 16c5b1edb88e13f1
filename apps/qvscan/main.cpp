// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/commandline/Terminal.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvscan/RelayFinder.h"
#include "apps/qvscan/ScanRun.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingSources.h"

#include <csignal>

namespace Quorvane {

namespace {

int s_run(CommandLine const& line) {
    auto options = scanOptions(line);
    useOwnRulesIfNoneAreInstalled(options.m_settings);
    if (line.has("show-config")) {
        printOutput(options.m_settings.asToml());
        return ExitStatus::ok;
    }
    warnAbout(options.m_settings, "qvscan");
    auto const settings = withFiles(options.m_settings.values()); // while signals end the program
    Pager const pager(options.m_wantsPager);
    Interrupt interrupt;
    if (options.m_findsRelays) {
        return findRelays(options, settings, interrupt);
    }
    return ScanRun(options, settings, interrupt, pager.isRunning()).run();
}

} // namespace

} // namespace Quorvane

int main(int argc, char** argv) {
    using namespace Quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    return runProgram(scanTable(), argc, argv, s_run);
}
