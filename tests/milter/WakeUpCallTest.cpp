// SPDX-License-Identifier: Apache-2.0
//
// Calls to listeners of all kinds. A call that does not reach its listener leaves the test waiting.
#include "apps/milter/WakeUpCall.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/un.h>
#include <unistd.h>

namespace Quorvane::Testing {
namespace {

using Milter::ListenPlace;
using Milter::WakeUpCall;

class Listener {
  public:
    template<typename Address>
    explicit Listener(Address const& address, int backlog = 5)
        : m_socket(::socket(reinterpret_cast<sockaddr const&>(address).sa_family,
                            SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket, backlog), 0);
    }
    Listener(Listener const&) = delete;
    Listener& operator=(Listener const&) = delete;
    ~Listener() { ::close(m_socket); }

    ListenPlace place() const { return ListenPlace::of(m_socket); }
    // Waits until somebody connects; what the caller says.
    ssize_t hear() const {
        int const caller = ::accept(m_socket, nullptr, nullptr);
        EXPECT_GE(caller, 0);
        char word = 0;
        auto const count = ::read(caller, &word, 1);
        ::close(caller);
        return count;
    }

  private:
    int m_socket;
};

sockaddr_un s_unixAddress(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

void s_expectCall(Listener const& listener) {
    { WakeUpCall const call(listener.place()); }
    EXPECT_EQ(listener.hear(), 0) << "a call says nothing";
}

TEST(WakeUpCall, WakesAListenerOfAnyKind) {
    TemporaryFolder const folder;
    s_expectCall(Listener(s_unixAddress(folder.path("socket"))));
    sockaddr_in every{}; // address, as a filter for mail servers on other machines listens
    every.sin_family = AF_INET;
    s_expectCall(Listener(every));
    sockaddr_in6 loopback{};
    loopback.sin6_family = AF_INET6;
    loopback.sin6_addr = in6addr_loopback;
    s_expectCall(Listener(loopback));
}

TEST(WakeUpCall, DoesNotWaitForAPlaceInTheQueue) {
    TemporaryFolder const folder;
    Listener const listener(s_unixAddress(folder.path("socket")), 0);
    for (int more = 0; more < 3; ++more) { // calls than the queue takes
        WakeUpCall const call(listener.place());
    }
    EXPECT_EQ(listener.hear(), 0);
}

TEST(WakeUpCall, IsNotMadeWhenNobodyListens) {
    TemporaryFolder const folder;
    Listener const listener(s_unixAddress(folder.path("socket")));
    std::filesystem::remove(folder.path("socket"));
    WakeUpCall const gone(listener.place());
    auto const nowhere = ListenPlace::of(-1);
    EXPECT_EQ(nowhere.m_size, 0U);
    WakeUpCall const lost(nowhere);
}

} // namespace
} // namespace Quorvane::Testing
