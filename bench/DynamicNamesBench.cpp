// SPDX-License-Identifier: Apache-2.0
//
// What it costs to recognise a dynamic host name, compared with lower-casing the name and searching
// it for six words.
#include "Measure.h"
#include "platform/DynamicIdentifier.h"

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

template<typename Work>
benchmark::internal::Benchmark* s_add(std::string const& title, Work const& work) {
    static auto const names = s_names();
    auto const each = [work] {
        for (auto const& name : names) {
            work(name);
        }
    };
    return add(title, nameCount, each);
}

void s_matchInForce(std::string const& name) {
    keep(DynamicIdentifierSingleton::instance(false)->match(name));
}

void s_addMatches() {
    auto const builtIn = DynamicIdentifier::builtIn();
    auto const longList = DynamicIdentifier::compile(s_longList(), "long list");
    s_add("one name/floor: copy, lower-case, six searches", s_floor);
    s_add("one name/built-in list", [=](auto const& name) { keep(builtIn->match(name)); });
    s_add("one name/list in force, fetched for each name", s_matchInForce)
        ->ThreadRange(1, 2)
        ->UseRealTime();
    s_add("one name/list of 384 expressions",
          [=](auto const& name) { keep(longList->match(name)); });
}

void s_addCompilation() {
    add("compiling a list of 384 expressions and matching one name", 1,
        [] { keep(DynamicIdentifier::compile(s_longList(), "long list")->match("a.b.c")); });
}

} // namespace
} // namespace Quorvane::Bench

int main(int argc, char** argv) {
    Quorvane::Bench::s_addMatches();
    Quorvane::Bench::s_addCompilation();
    return Quorvane::Bench::run(argc, argv);
}
