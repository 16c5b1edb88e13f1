// SPDX-License-Identifier: Apache-2.0
//
// Judges arbitrary bytes as a message, with the default rules and without DNS. No header section
// makes a scan fail: a sender would keep the message from being judged. What engine and scanner say
// has to agree.
#include "adapter/DeepHeaderAdapter.h"
#include "Check.h"
#include "DeepHeaderScanner.h"
#include "platform/File.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

DeepHeaderQuery s_query(std::string_view message) {
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.95;
    settings.hamThreshold = 0.95;
    return DeepHeaderQuery(HeaderReader::read(message), Header(), settings, -1, EmailAddress(),
                           EmailAddress(), EmailAddress(), RefMessageProperties(true));
}

// The verdict of the engine itself. What it throws ends the program: that is a finding.
DeepHeaderAnswer s_judge(DeepHeaderAdapter& engine, DeepHeaderQuery& query) {
    DeepHeaderAdapter::MsgProperties props;
    auto const answer = engine.scanMessage(query, props);
    for (auto const& facts : attributeTable) {
        check(facts.m_values.contains(props.attributes[facts.m_index]),
              "an attribute takes only the values that its table row names");
    }
    return answer;
}

RefDeepHeaderAdapter s_engine() {
    Synchronized const lock(DeepHeaderScanner::m_Mutex);
    return RefDeepHeaderAdapter::instance(nullptr);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    File::setRoot(QV_DEFAULT_ROOT);
    ResolverSettings noLookups;
    noLookups.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(noLookups);
    DeepHeaderScanner scanner;
    scanner.init();
    check(scanner.ready(), "the default rules load");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto query = s_query({reinterpret_cast<char const*>(data), size});
    auto engine = s_engine();
    auto const direct = s_judge(*engine.operator->(), query);
    DeepHeaderScanner scanner;
    auto const posted = scanner.postQuery(query);
    check(!(posted.isSpam() && posted.isHam()), "nothing is spam and ham at once");
    check(posted.getNode() == direct.getNode() && posted.isSpam() == direct.isSpam() &&
              posted.isHam() == direct.isHam() && posted.getIPs() == direct.getIPs() &&
              posted.getReasons() == direct.getReasons(),
          "a query may be posted again and is judged the same");
    return 0;
}
