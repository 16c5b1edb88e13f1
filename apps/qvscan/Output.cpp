// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Output.h"

#include <cerrno>
#include <unistd.h>

namespace Quorvane {

bool Output::write(std::string_view text) {
    while (!m_isClosed && !text.empty()) {
        auto const count = ::write(m_descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            m_isClosed = true;
            m_error = errno == EPIPE ? 0 : errno;
        }
    }
    return !m_isClosed;
}

} // namespace Quorvane
