// SPDX-License-Identifier: Apache-2.0
//
// qv_docgen: writes manual pages and completions from a program's option table. Runs while
// building:
//   qv_docgen man PROGRAM PROSE OUTPUT
//   qv_docgen bash|zsh PROGRAM OUTPUT
#include "apps/docgen/Completion.h"
#include "apps/docgen/ManPage.h"
#include "apps/milter/MilterTable.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvscan/Options.h"
#include "apps/settings/SettingsTable.h"

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace Quorvane::Docs {

namespace {

using Arguments = std::vector<std::string>;

std::string s_read(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!(text << file.rdbuf())) {
        throw std::runtime_error(path + ": cannot be read");
    }
    return text.str();
}

void s_write(std::string const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text << std::flush)) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

ProgramTable s_table(std::string_view name) {
    if (name == "qvscan") {
        return scanTable();
    }
    if (name == "qvrules") {
        return RulesApp::rulesTable();
    }
    if (name == "qvmilter") {
        return Milter::milterTable();
    }
    if (name == "qvdeepheader.conf") {
        return {name, {}}; // a file that programs share: no options
    }
    throw std::out_of_range(std::string(name) + ": no program with an option table");
}

std::string s_generate(Arguments const& arguments) {
    auto const& format = arguments[0];
    auto const program = s_table(arguments[1]);
    if (format == "man" && arguments.size() == 4) {
        Docs::SettingTables const settings{{"", factsOf(settingRows())},
                                           {"milter", factsOf(Milter::milterRows())}};
        return manPage(program, settings, s_read(arguments[2]), QV_VERSION);
    }
    if (format == "bash" && arguments.size() == 3) {
        return bashCompletion(program);
    }
    if (format == "zsh" && arguments.size() == 3) {
        return zshCompletion(program);
    }
    throw std::runtime_error("usage: qv_docgen man PROGRAM PROSE OUTPUT | bash PROGRAM OUTPUT | "
                             "zsh PROGRAM OUTPUT");
}

int s_run(Arguments const& arguments) {
    try {
        if (arguments.size() < 3) {
            throw std::runtime_error("qv_docgen needs a format, a program and an output");
        }
        s_write(arguments.back(), s_generate(arguments));
        return 0;
    } catch (std::exception const& error) {
        std::cerr << "qv_docgen: " << error.what() << "\n";
        return 1;
    }
}

} // namespace

} // namespace Quorvane::Docs

int main(int argc, char** argv) {
    return Quorvane::Docs::s_run({argv + 1, argv + argc});
}
