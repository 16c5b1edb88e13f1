// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/CurrentHop.h"

#include <algorithm>
#include <cstring>

namespace Quorvane::Milter {

namespace {

// A host name that is none: Postfix says "unknown", Sendmail the address in brackets.
std::string s_nameOrNone(std::string const& name) {
    return name == "unknown" || name.starts_with('[') ? std::string() : name;
}

std::string s_literal(IPAddress const& address) {
    return '[' + std::string(address.isV6() ? "IPv6:" : "") + address.asString(true) + ']';
}

bool s_isPostfix(MailServer& server) {
    return server.macro("v").starts_with("Postfix");
}

// RFC 3848: SMTP, ESMTP, ESMTPS, ESMTPA, ESMTPSA.
std::string s_protocol(MailServer& server) {
    bool const hasTls = !server.macro("{tls_version}").empty();
    bool const isAuthenticated = !server.macro("{auth_type}").empty();
    auto given = server.macro("r"); // Sendmail says it all
    if (!given.empty()) {
        return given;
    }
    return std::string("ESMTP") + (hasTls ? "S" : "") + (isAuthenticated ? "A" : "");
}

std::string s_tls(MailServer& server) {
    auto const version = server.macro("{tls_version}");
    if (version.empty()) {
        return {};
    }
    auto const bits = server.macro("{cipher_bits}");
    return "\n\t(using " + version + " with cipher " + server.macro("{cipher}") + " (" + bits +
           "/" + bits + " bits))";
}

// from HELO (NAME [ADDRESS]) ... by SERVER (Postfix) with ESMTPS id ID
std::string s_postfixText(MailServer& server, Client const& client) {
    auto const name = client.m_name.empty() ? "unknown" : client.m_name;
    return "from " + (client.m_helo.empty() ? name : client.m_helo) + " (" + name + ' ' +
           s_literal(client.m_address) + ')' + s_tls(server) + "\n\tby " + server.macro("j") +
           " (Postfix) with " + s_protocol(server) + " id " + server.macro("i");
}

// What Sendmail writes in the parentheses: the macro "_" where it is known.
std::string s_sendmailClient(MailServer& server, Client const& client) {
    if (auto given = server.macro("_"); !given.empty()) {
        return given;
    }
    auto const name = client.m_reverse.empty() ? client.m_name : client.m_reverse;
    return name + (name.empty() ? "" : " ") + s_literal(client.m_address) +
           (forgedFlag(client) == 1 ? " (may be forged)" : "");
}

// from HELO (NAME [ADDRESS] (may be forged)) by SERVER with ESMTPS id ID
std::string s_sendmailText(MailServer& server, Client const& client) {
    return "from " + client.m_helo + " (" + s_sendmailClient(server, client) + ")\n\tby " +
           server.macro("j") + " with " + s_protocol(server) + " id " + server.macro("i");
}

} // namespace

std::string heloNameOf(std::string name) {
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return c <= ' ' || c > '~' || std::strchr("<>()\\\";@", c) != nullptr; }, '?');
    return name;
}

Client clientOf(MailServer& server, std::string const& hostName, IPAddress const& address) {
    Client client;
    auto const name = server.macro("{client_name}");
    client.m_name = s_nameOrNone(name.empty() ? hostName : name);
    client.m_reverse = s_nameOrNone(server.macro("{client_ptr}"));
    client.m_resolved = server.macro("{client_resolve}");
    auto const given = server.macro("{client_addr}");
    client.m_address = address.isNull() ? IPAddress(given) : address;
    return client;
}

std::string receivedText(MailServer& server, Client const& client) {
    return s_isPostfix(server) ? s_postfixText(server, client) : s_sendmailText(server, client);
}

std::int32_t forgedFlag(Client const& client) {
    if (!client.m_resolved.empty()) {
        return client.m_resolved == "FORGED" ? 1 : 0;
    }
    if (client.m_reverse.empty()) {
        return client.m_name.empty() ? 0 : -1;
    }
    return client.m_name == client.m_reverse ? 0 : 1;
}

} // namespace Quorvane::Milter
