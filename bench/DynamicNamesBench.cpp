// SPDX-License-Identifier: Apache-2.0
//
// What it costs to tell a dynamic host name, against lower-casing the name and searching it for six
// words.
#include "platform/DynamicIdentifier.h"
#include "SideBySide.h"
#include "TwoThreads.h"

#include <cctype>
#include <sstream>
#include <string>
#include <vector>

using Telvanis::DynamicIdentifier;
using Telvanis::DynamicIdentifierSingleton;

namespace Quorvane::Bench {
namespace {

constexpr int nameCount = 10'000;

// A name of one of five kinds: consumer lines, mail servers and farms.
std::string s_name(int i) {
    auto const a = i % 256;
    auto const b = i / 256;
    std::ostringstream name;
    switch (i % 5) {
    case 0:
        name << "adsl-192-0-" << b << '-' << a << ".pool.isp.example.net";
        break;
    case 1:
        name << "mail" << a << ".town" << b << ".example.org";
        break;
    case 2:
        name << "sonic" << a << '-' << b << ".people.mail.example.com";
        break;
    case 3:
        name << "host" << a << '.' << b << ".0.192.lines.example.net";
        break;
    default:
        name << "lists.group" << a << ".example.org";
    }
    return name.str();
}

std::vector<std::string> s_names() {
    std::vector<std::string> names;
    names.reserve(nameCount);
    for (int i = 0; i < nameCount; ++i) {
        names.push_back(s_name(i));
    }
    return names;
}

// As many lines as a large site's own list.
std::string s_longList() {
    std::ostringstream patterns;
    for (int i = 0; i < 384; ++i) {
        patterns << "(?:^|[-.])line" << i << "-[0-9]+\\.area" << i << "\\.example\n";
    }
    return patterns.str();
}

void s_floor(std::string const& name) {
    std::string text = name;
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (char const* word : {"adsl", "dialup", "pool", "dyn", "dhcp", "cable"}) {
        keep(text.find(word));
    }
}

class DynamicNamesBench {
  public:
    void match() const {
        SideBySide table("Telling one dynamic host name", "name", nameCount);
        table.add("floor: copy, lower-case, six searches", [this] { each(s_floor); });
        table.add("built-in list", [this] {
            each([this](std::string const& name) { keep(m_builtIn->match(name)); });
        });
        table.add("list in force, fetched for each name", [this] { each(s_matchInForce); });
        table.add("list of 384 expressions",
                  [this] { each([this](std::string const& name) { keep(m_long->match(name)); }); });
        table.run();
    }

    void compile() const {
        SideBySide table("Compiling a list and matching one name", "list", 1.0);
        table.add("built-in list", [] { keep(DynamicIdentifier::builtIn()->match("a.b.c")); });
        table.add("list of 384 expressions", [] {
            keep(DynamicIdentifier::compile(s_longList(), "long list")->match("a.b.c"));
        });
        table.run();
    }

    void threads() const {
        printTwoThreadGain([this] {
            for (int pass = 0; pass < 100; ++pass) {
                each(s_matchInForce);
            }
        });
    }

  private:
    static void s_matchInForce(std::string const& name) {
        keep(DynamicIdentifierSingleton::instance(false)->match(name));
    }

    template<typename Work>
    void each(Work const& work) const {
        for (auto const& name : m_names) {
            work(name);
        }
    }

    std::vector<std::string> m_names = s_names();
    boost::shared_ptr<DynamicIdentifier> m_builtIn = DynamicIdentifier::builtIn();
    boost::shared_ptr<DynamicIdentifier> m_long =
        DynamicIdentifier::compile(s_longList(), "long list");
};

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::DynamicNamesBench const bench;
    bench.match();
    bench.compile();
    bench.threads();
    return 0;
}
