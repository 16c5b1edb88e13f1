// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/WakeUpCall.h"

#include <unistd.h>

namespace Quorvane::Milter {

ListenPlace ListenPlace::of(int descriptor) {
    int isListening = 0;
    socklen_t size = sizeof isListening;
    ListenPlace place;
    socklen_t addressSize = sizeof place.m_address;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &isListening, &size) == 0 &&
        isListening != 0 &&
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&place.m_address), &addressSize) ==
            0) {
        place.m_size = addressSize;
    }
    return place;
}

WakeUpCall::WakeUpCall(ListenPlace const& place)
    : m_socket(::socket(place.m_address.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    // Whatever fails: who is not woken looks up later.
    static_cast<void>(
        ::connect(m_socket, reinterpret_cast<sockaddr const*>(&place.m_address), place.m_size));
}

WakeUpCall::~WakeUpCall() {
    if (m_socket >= 0) {
        ::close(m_socket);
    }
}

} // namespace Quorvane::Milter
