// SPDX-License-Identifier: Apache-2.0
//
// What the look-ups of a scan cost when the name server answers after 20 ms. No name is asked for
// twice, so no answer comes from memory.
#include "DeepHeaderScanner.h"
#include "platform/HeaderReader.h"
#include "platform/Host.h"
#include "platform/Resolver.h"
#include "SideBySide.h"
#include "support/LateDnsServer.h"
#include "support/RuleFolder.h"

namespace Quorvane::Bench {
namespace {

constexpr std::chrono::milliseconds delay{20};

class LookupBench {
  public:
    LookupBench() {
        m_rules.writeTree({});
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::servers;
        settings.m_servers = {m_server.address()};
        Resolver::instance().configure(settings);
        DeepHeaderScanner().init();
    }

    void run() {
        SideBySide table("Look-ups of one scan, each answered after 20 ms", "scan", 1.0);
        table.add("the slowest of them: the addresses of one name",
                  [this] { keep(Host(freshName("client"), true).isNull()); });
        table.add("whether one name resolves", [this] { lookUp("relay"); });
        table.add("all three, one after the other", [this] {
            keep(Host(freshName("client"), true).isNull());
            lookUp("relay");
            lookUp("sender");
        });
        table.add("a scan that asks for all three", [this] { scan(); });
        table.run();
    }

  private:
    // A name that nobody has asked for yet.
    std::string freshName(char const* host) {
        return host + std::to_string(++m_number) + ".example";
    }

    void lookUp(char const* host) {
        keep(Resolver::instance()
                 .submit(RecordType::mailName, freshName(host), RecordClass::IN)
                 .isEmpty());
    }

    void scan() {
        auto const headers =
            HeaderReader::read("Received: from " + freshName("relay") + " (" + freshName("client") +
                               " [192.0.2.9]) by mx.example; Mon, 1 Jan 2024 00:00:00 +0000\n");
        auto const sender = EmailAddress::rfc5322Parse("a@" + freshName("sender"), true);
        DeepHeaderQuery query(headers, Header(), DeepHeaderSettings(), -1, sender, sender,
                              EmailAddress(), m_properties);
        keep(DeepHeaderScanner().postQuery(query).getNode());
    }

    Testing::LateDnsServer m_server{delay};
    Testing::RuleFolder m_rules;
    RefMessageProperties m_properties{true};
    int m_number = 0;
};

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::LookupBench().run();
    return 0;
}
