// SPDX-License-Identifier: Apache-2.0
// To be preloaded: libmilter that looks whether it has to end only when somebody connects, and says
// when it waits for that, and when its main loop has returned.
#include <cstdio>
#include <dlfcn.h>
#include <poll.h>

namespace {

constexpr int lookEvery = 5000; // milliseconds; no other wait of libmilter is as long

template<typename Function>
Function* s_next(char const* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

// The C library declares it with names that only it may use.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int poll(pollfd* sockets, nfds_t count, int patience) {
    auto* const next = s_next<int(pollfd*, nfds_t, int)>("poll");
    if (patience != lookEvery) {
        return next(sockets, count, patience);
    }
    std::fputs("libmilter waits\n", stderr);
    return next(sockets, count, -1);
}

extern "C" int smfi_main() {
    int const result = s_next<int()>("smfi_main")();
    std::fputs("libmilter has returned\n", stderr);
    return result;
}
