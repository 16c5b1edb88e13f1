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
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    s_switchLookupsOff();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    MsgReceived const hop(std::string(reinterpret_cast<char const*>(data), size));
    try {
        s_readAll(hop);
        s_readAll(hop); // an abandoned parse starts again
    } catch (std::out_of_range const&) {
        // The documented failure.
    }
    return 0;
}
