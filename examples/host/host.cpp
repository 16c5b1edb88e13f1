// SPDX-License-Identifier: Apache-2.0
//
// A complete host, a program that uses the library:
//   host ROOT MESSAGE
// judges a message with the rules in ROOT/var/spool/etc/antispam, and prints what it found.
#include <DeepHeaderScanner.h>
#include <include2/Exception.h>
#include <platform/File.h>
#include <platform/HeaderReader.h>
#include <platform/Resolver.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace Quorvane;

// From any number of threads: a scan keeps its state to itself.
static DeepHeaderAnswer judge(DeepHeaderScanner& scanner, std::string const& message) {
    DeepHeaderSettings settings;
    settings.spamThreshold = settings.hamThreshold = 0.95; // the defaults give no verdict
    DeepHeaderQuery query(HeaderReader::read(message), Header(), settings, -1, EmailAddress(),
                          EmailAddress(), EmailAddress(), RefMessageProperties(true));
    return scanner.postQuery(query);
}

static int run(char const* root, char const* path) {
    File::setRoot(root); // throws if there is no such folder; without it the root is "/"

    // A program that judges incoming mail leaves DNS on.
    ResolverSettings noLookups;
    noLookups.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(noLookups);

    DeepHeaderScanner scanner;
    scanner.init(); // call it again later: it reloads when newer rules are installed
    if (!scanner.ready()) {
        std::cerr << "host: there are no rules below " << root << '\n';
        return 1;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << "host: " << path << " cannot be read\n";
        return 1;
    }
    std::string const message{std::istreambuf_iterator<char>(file), {}};
    auto const answer = judge(scanner, message);
    std::cout << (answer.isSpam()  ? "spam"
                  : answer.isHam() ? "ham"
                                   : "none")
              << ' ' << answer.getReasons() << '\n';
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: host ROOT MESSAGE\n";
        return 64;
    }
    try {
        return run(argv[1], argv[2]);
    } catch (Exception const& error) {
        std::cerr << "host: " << error.stringParameter() << '\n';
        return 1;
    }
}
