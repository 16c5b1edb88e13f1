// SPDX-License-Identifier: Apache-2.0
// To be preloaded: libmilter whose main loop never returns after it has been told to stop.
#include <dlfcn.h>
#include <unistd.h>

extern "C" int smfi_main() {
    using Main = int (*)();
    auto* const symbol = ::dlsym(RTLD_NEXT, "smfi_main");
    reinterpret_cast<Main>(symbol)();
    for (;;) {
        ::pause();
    }
}
