// SPDX-License-Identifier: Apache-2.0
//
// Reads every field of a Received header made of arbitrary bytes. Reading may fail in the one way
// that the record documents (a value that ends in "by "); nothing else may be thrown, and what is
// read has to agree with itself.
#include "Check.h"
#include "MsgReceived.h"
#include "platform/Resolver.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

using Quorvane::MsgReceived;

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

void s_switchLookupsOff() {
    Quorvane::ResolverSettings settings;
    settings.m_mode = Quorvane::ResolverSettings::Mode::off;
    Quorvane::Resolver::instance().configure(settings);
}

bool s_isLowerCase(std::string const& text) {
    return text.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
}

void s_readAll(MsgReceived const& hop) {
    Quorvane::check(s_isLowerCase(hop.from()), "names are lower-cased");
    Quorvane::check(s_isLowerCase(hop.by()), "names are lower-cased");
    Quorvane::check(s_isLowerCase(hop.reverseName()), "names are lower-cased");
    hop.receiveTime();
    hop.authenticated();
    auto const isPrivate = hop.privateIP();
    auto const& address = hop.address();
    Quorvane::check(isPrivate || !address.isNull(), "a hop without address is private");
    Quorvane::check(hop.isForged() == 0, "nobody is found forged without DNS");
    Quorvane::IPAddress client(address);
    std::string name = hop.reverseName();
    Quorvane::check(!Quorvane::s_isForged(client, name), "nobody is found forged without DNS");
    Quorvane::s_getReverseName(client, name);
    Quorvane::check(name.empty(), "nobody has a name without DNS");
}

// As a scan does it, with the generic header that comes out of a list of headers.
void s_readAssigned(std::string const& value) {
    MsgReceived assigned;
    Quorvane::Header const generic(assigned.type(), value);
    MsgReceived const hop(generic.value());
    assigned = generic;
    Quorvane::check(assigned.from() == hop.from() && assigned.by() == hop.by() &&
                        assigned.reverseName() == hop.reverseName() &&
                        assigned.address() == hop.address(),
                    "a header reads the same wherever it comes from");
    MsgReceived copy;
    copy = assigned;
    copy.isForged(1);
    Quorvane::check(copy.isForged() == 1 && assigned.isForged() == 0,
                    "a copy has a judgement of its own");
    assigned = Quorvane::Header();
    Quorvane::check(assigned.from().empty() && assigned.address().isNull(),
                    "no header has no fields");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    s_switchLookupsOff();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const value(reinterpret_cast<char const*>(data), size);
    MsgReceived const hop(value);
    try {
        s_readAll(hop);
        s_readAll(hop); // an abandoned parse starts again
        s_readAssigned(value);
    } catch (std::out_of_range const&) {
        // The documented failure.
    }
    return 0;
}
