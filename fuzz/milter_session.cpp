// SPDX-License-Identifier: Apache-2.0
//
// Calls the callbacks of the mail filter as arbitrary lines say, in any order, with the default
// rules and without DNS. A line begins with the letter of a step:
//
//   m NAME VALUE   a macro            c NAME ADDRESS   connect
//   h NAME         HELO               f ADDRESS        envelope sender
//   r ADDRESS      recipient          H NAME:VALUE     a header
//   e              end of message     a                abort          x   close
//
// No message makes a scan fail; changes are made at the end of a message only, and what is added
// cannot become two headers.
#include "apps/milter/Callbacks.h"
#include "Check.h"
#include "FakeMilter.h"
#include "platform/IPAddress.h"
#include "platform/Logger.h"
#include "platform/LogMessages.h"
#include "rules/format/RuleFiles.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

// What the filter reports is checked, not shown.
class CheckingLogger : public Logger {
  public:
    void log(int messageId, int /*reserved*/, char const* /*format*/, ...) override
        __attribute__((format(printf, 4, 5))) {
        check(messageId != LogId::messageFailed, "no message makes a scan fail");
        check(messageId != LogId::noRules, "the default rules load");
    }
};

// The default rules, in files of our own: a filter that root starts refuses those of others.
std::string s_ownRules(Testing::TemporaryFolder const& folder) {
    for (auto const* const name : ruleFileNames) {
        auto const path = std::string(ruleDirectory) + '/' + name;
        if (std::ifstream file(QV_DEFAULT_ROOT + path, std::ios::binary); file) {
            folder.write("root" + path, std::string(std::istreambuf_iterator<char>(file), {}));
        }
    }
    return folder.path("root");
}

Milter::Service& s_makeService() {
    static Testing::TemporaryFolder const s_folder;
    ::umask(022); // what others may write is refused, too
    auto const settings = s_folder.write("settings.toml", "root = \"" + s_ownRules(s_folder) +
                                                              "\"\n"
                                                              "dns = \"off\"\n"
                                                              "max-headers = 40\n"
                                                              "max-hops = 10\n"
                                                              "[milter]\n"
                                                              "on-spam = \"quarantine\"\n"
                                                              "on-ham = \"accept\"\n"
                                                              "add-reasons = 1\n");
    Logger::install(std::make_shared<CheckingLogger>());
    static Milter::Service s_service(settings);
    Milter::useService(s_service);
    check(Milter::registerFilter(), "the filter registers");
    return s_service;
}

// The text before the first blank, which is taken away with it.
std::string s_takeWord(std::string_view& line) {
    auto const end = std::min(line.find(' '), line.size());
    std::string word(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

// The mail server and one connection of it. Strings reach callbacks as C has them.
class MailServer {
  public:
    explicit MailServer(smfiDesc const& filter) : m_filter(filter) {}
    MailServer(MailServer const&) = delete;
    MailServer& operator=(MailServer const&) = delete;
    ~MailServer() { m_filter.xxfi_close(&m_connection); }

    void step(std::string_view line) {
        char const letter = line.empty() ? ' ' : line.front();
        line.remove_prefix(std::min<std::size_t>(2, line.size()));
        switch (letter) {
        case 'm': {
            auto const name = s_takeWord(line);
            m_connection.m_macros[name] = line;
            break;
        }
        case 'c':
            connect(line);
            break;
        case 'h':
            m_filter.xxfi_helo(&m_connection, std::string(line).data());
            break;
        case 'f':
            withArgument(m_filter.xxfi_envfrom, line);
            break;
        case 'r':
            withArgument(m_filter.xxfi_envrcpt, line);
            break;
        case 'H':
            header(line);
            break;
        case 'e':
            end();
            break;
        case 'a':
            m_filter.xxfi_abort(&m_connection);
            break;
        case 'x':
            m_filter.xxfi_close(&m_connection);
            break;
        default:
            break;
        }
    }

  private:
    void connect(std::string_view line) {
        auto name = s_takeWord(line);
        IPAddress const address{std::string(line)};
        sockaddr_in6 six{};
        six.sin6_family = AF_INET6;
        std::memcpy(&six.sin6_addr, address.bytes().data(), sizeof six.sin6_addr);
        sockaddr_in four{};
        four.sin_family = AF_INET;
        std::memcpy(&four.sin_addr, address.bytes().data() + 12, sizeof four.sin_addr);
        auto* const socket = address.isNull() ? nullptr
                             : address.isV6() ? reinterpret_cast<sockaddr*>(&six)
                                              : reinterpret_cast<sockaddr*>(&four);
        m_filter.xxfi_connect(&m_connection, name.data(), socket);
    }

    void withArgument(sfsistat (*callback)(SMFICTX*, char**), std::string_view line) {
        std::string text(line);
        std::array<char*, 2> arguments{text.data(), nullptr};
        callback(&m_connection, arguments.data());
    }

    // "\" stands for a line break, which continues a header.
    void header(std::string_view line) {
        auto const colon = std::min(line.find(':'), line.size());
        std::string name(line.substr(0, colon));
        std::string value(line.substr(std::min(colon + 1, line.size())));
        std::replace(value.begin(), value.end(), '\\', '\n');
        m_filter.xxfi_header(&m_connection, name.data(), value.data());
    }

    void end() {
        m_connection.m_isAtEnd = true;
        m_filter.xxfi_eom(&m_connection);
        m_connection.m_isAtEnd = false;
        check(!m_connection.m_isTooEarly, "changes are made at the end of a message");
        for (auto const& name : m_connection.m_addedNames) {
            check(name.starts_with("X-QV-Deep-Header"), "headers are added under our names");
        }
        for (auto const& value : m_connection.m_addedValues) {
            check(std::all_of(value.begin(), value.end(),
                              [](char c) { return c >= ' ' && c <= '~'; }),
                  "what is added cannot become two headers");
        }
        m_connection.m_addedNames.clear();
        m_connection.m_addedValues.clear();
    }

    smfiDesc const& m_filter;
    SMFICTX m_connection;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static auto& s_service = s_makeService();
    check(s_service.health() == "ok", "the service goes on");
    MailServer server(registeredFilter());
    std::string_view lines(reinterpret_cast<char const*>(data), size);
    while (!lines.empty()) {
        auto const line = lines.substr(0, lines.find('\n'));
        server.step(line);
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return 0;
}
