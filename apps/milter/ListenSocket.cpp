// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/ListenSocket.h"

#include "apps/milter/Accounts.h"
#include "apps/settings/SettingValue.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <libmilter/mfapi.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Quorvane::Milter {

namespace {

sockaddr_un s_unixAddress(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

bool s_isServed(std::string const& path) {
    int const descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto const address = s_unixAddress(path);
    bool const isServed =
        ::connect(descriptor, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return isServed;
}

[[noreturn]] void s_fail(std::string const& what, std::string const& why) {
    throw SettingsError("socket: " + what + ": " + why);
}

// The socket belongs to the user that the daemon becomes, who has to connect to it at the end.
// A hardened service may change no owner, so one that is right already is left alone.
void s_setOwner(std::string const& path, MilterSettings const& settings) {
    struct stat file {};
    if (::stat(path.c_str(), &file) != 0) {
        s_fail(path, "its user and group cannot be read: " + std::string(std::strerror(errno)));
    }
    auto const user = settings.m_user.empty() ? file.st_uid : userId(settings.m_user);
    auto const group =
        settings.m_socketGroup.empty() ? file.st_gid : groupId(settings.m_socketGroup);
    bool const isRight = user == file.st_uid && group == file.st_gid;
    if (!isRight && ::chown(path.c_str(), user, group) != 0) {
        s_fail(path, "its user and group cannot be set: " + std::string(std::strerror(errno)));
    }
}

void s_setAccess(std::string const& path, MilterSettings const& settings) {
    s_setOwner(path, settings);
    if (::chmod(path.c_str(), socketMode(settings.m_socketMode)) != 0) {
        s_fail(path, "its mode cannot be set: " + std::string(std::strerror(errno)));
    }
}

// The descriptor that is opened next is the lowest that is free.
int s_nextDescriptor() {
    int const next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(next);
    return next;
}

} // namespace

ListenAddress ListenAddress::parse(std::string const& text) {
    auto const colon = text.find(':');
    auto const kind = text.substr(0, colon);
    if (text.starts_with('/')) {
        return {text, "unix:" + text};
    }
    if (colon != std::string::npos && (kind == "unix" || kind == "local")) {
        auto const path = text.substr(colon + 1);
        if (path.starts_with('/') && path.size() < sizeof(sockaddr_un::sun_path)) {
            return {path, text};
        }
    }
    auto const at = text.find('@');
    if (at != std::string::npos && at + 1 < text.size() && (kind == "inet" || kind == "inet6")) {
        readInteger(text.substr(colon + 1, at - colon - 1), 1, 65535);
        return {"", text};
    }
    throw SettingsError("\"" + text +
                        "\" is not a socket; write unix: and a whole path of at most 107 bytes, or "
                        "inet:PORT@HOST, as in inet:8891@127.0.0.1");
}

mode_t socketMode(std::string const& text) {
    unsigned int mode = 0;
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, mode, 8);
    if (text.empty() || result.ec != std::errc() || result.ptr != end || mode > 0777) {
        throw SettingsError("\"" + text + "\" is not a mode; write it in octal, as in 660");
    }
    return mode;
}

ListenPlace openSocket(MilterSettings const& settings) {
    auto const address = ListenAddress::parse(settings.m_socket);
    if (!address.m_path.empty() && s_isServed(address.m_path)) {
        s_fail(address.m_path, "another program serves it");
    }
    auto text = address.m_text;
    int const descriptor = s_nextDescriptor(); // libmilter does not say which it opens
    // Nobody may connect before group and mode are set.
    auto const before = ::umask(0177);
    bool const isOpen =
        smfi_setconn(text.data()) == MI_SUCCESS && smfi_opensocket(true) == MI_SUCCESS;
    int const error = errno;
    ::umask(before);
    if (!isOpen) {
        s_fail(address.m_text, std::string("it cannot be opened: ") + std::strerror(error));
    }
    if (!address.m_path.empty()) {
        s_setAccess(address.m_path, settings);
    }
    return ListenPlace::of(descriptor);
}

} // namespace Quorvane::Milter
