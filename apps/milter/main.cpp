// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/milter/Daemon.h"
#include "apps/milter/Snapshot.h"

#include <csignal>
#include <malloc.h>

namespace Quorvane::Milter {

namespace {

int s_run(CommandLine const& line) {
    if (line.has("show-config")) {
        auto const settings = readFileSettings(line);
        printOutput(settings.m_host.asToml() + '\n' + settings.m_milter.asToml());
        return ExitStatus::ok;
    }
    if (line.has("check")) {
        checkSettings(line);
        printOutput(line.text("config") + ": settings and rules are in order\n");
        return ExitStatus::ok;
    }
    return serve(line);
}

} // namespace

} // namespace Quorvane::Milter

int main(int argc, char** argv) {
    using namespace Quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    // glibc would give the threads of sessions heaps of their own, and each keeps what it once
    // took.
    ::mallopt(M_ARENA_MAX, 1);
    return runProgram(Milter::milterTable(), argc, argv, Milter::s_run);
}
