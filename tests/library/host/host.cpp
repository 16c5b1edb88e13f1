// SPDX-License-Identifier: Apache-2.0
//
// A mail program in small: links the installed library, reads rules from the folder given, judges
// the message given and prints what it found.
#include <DeepHeaderScanner.h>
#include <platform/File.h>
#include <platform/HeaderReader.h>
#include <platform/Resolver.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace Quorvane;

static DeepHeaderAnswer judge(DeepHeaderScanner& scanner, std::string const& message) {
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.95;
    settings.hamThreshold = 0.95;
    auto const headers = HeaderReader::read(message);
    DeepHeaderQuery query(headers, Header(), settings, -1, EmailAddress(), EmailAddress(),
                          EmailAddress(), RefMessageProperties(true));
    return scanner.postQuery(query);
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: host RULES MESSAGE\n";
        return 64;
    }
    File::setRoot(argv[1]);
    ResolverSettings noLookups;
    noLookups.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(noLookups);
    DeepHeaderScanner scanner;
    scanner.init();

    std::ifstream file(argv[2], std::ios::binary);
    std::string const message{std::istreambuf_iterator<char>(file), {}};
    auto const answer = judge(scanner, message);
    std::cout << (answer.isSpam()  ? "spam"
                  : answer.isHam() ? "ham"
                                   : "none")
              << " rule " << answer.getNode() << " addresses " << answer.getIPs() << '\n';
    return scanner.ready() ? 0 : 1;
}
