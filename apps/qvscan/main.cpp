// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"
#include "apps/qvscan/ScanRun.h"
#include "apps/settings/ExitCode.h"
#include "apps/text/Utf8.h"

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

namespace Quorvane {

namespace {

int s_main(std::vector<std::string> const& arguments) {
    auto const options = parseOptions(arguments);
    if (options.m_showHelp) {
        std::cout << helpText() << std::flush;
        return ExitCode::ok;
    }
    if (options.m_showVersion) {
        std::cout << "qvscan " QV_VERSION "\n" << std::flush;
        return ExitCode::ok;
    }
    if (options.m_showConfig) {
        std::cout << options.m_settings.asToml() << std::flush;
        return ExitCode::ok;
    }
    Interrupt interrupt;
    return ScanRun(options, interrupt).run();
}

int s_fail(std::string const& text, int status) {
    std::cerr << "qvscan: " << toPrintableLines(text) << "\n";
    return status;
}

} // namespace

} // namespace Quorvane

int main(int argc, char** argv) {
    using namespace Quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return s_main({argv + 1, argv + argc});
    } catch (UsageError const& error) {
        return s_fail(std::string(error.what()) + "; qvscan --help shows the options",
                      ExitCode::usage);
    } catch (SettingsError const& error) {
        return s_fail(error.what(), ExitCode::config);
    } catch (std::exception const& error) {
        return s_fail(error.what(), ExitCode::ioError);
    }
}
