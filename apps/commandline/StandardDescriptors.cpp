// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace Quorvane {

void openClosedDescriptors() {
    // By number. A descriptor for the other direction fails each time that it is used.
    constexpr int directions[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        if (::fcntl(number, F_GETFD) == -1) {
            // The lowest free number is given, which is this one.
            static_cast<void>(::open("/dev/null", directions[number]));
        }
    }
}

} // namespace Quorvane
