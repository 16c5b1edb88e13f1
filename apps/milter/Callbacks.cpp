// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Callbacks.h"

#include "apps/milter/Session.h"

#include <exception>
#include <libmilter/mfapi.h>
#include <limits>
#include <memory>
#include <netinet/in.h>
#include <string_view>

namespace Quorvane::Milter {

namespace {

// libmilter gives its callbacks nothing of the program's own before there is a session.
Service* s_service = nullptr;

class Context : public MailServer {
  public:
    explicit Context(SMFICTX* context) : m_context(context) {}

    std::string macro(char const* name) override {
        std::string key(name);
        auto const* const value = smfi_getsymval(m_context, key.data());
        return value == nullptr ? std::string() : std::string(value);
    }
    bool addHeader(std::string const& name, std::string const& value) override {
        auto ownName = name;
        auto ownValue = ' ' + value; // SMFIP_HDR_LEADSPC
        return smfi_insheader(m_context, 0, ownName.data(), ownValue.data()) == MI_SUCCESS;
    }
    bool removeHeader(std::string const& name, int index) override {
        auto ownName = name;
        return smfi_chgheader(m_context, ownName.data(), index, nullptr) == MI_SUCCESS;
    }
    bool quarantine(std::string const& reason) override {
        auto ownReason = reason;
        return smfi_quarantine(m_context, ownReason.data()) == MI_SUCCESS;
    }
    bool replyText(char const* code, char const* enhancedCode, std::string const& text) override {
        std::string ownCode(code);
        std::string ownEnhanced(enhancedCode);
        std::string ownText; // libmilter formats it: "%" stands for itself as "%%"
        for (char const c : text) {
            ownText += c == '%' ? "%%" : std::string(1, c);
        }
        return smfi_setreply(m_context, ownCode.data(), ownEnhanced.data(), ownText.data()) ==
               MI_SUCCESS;
    }

  private:
    SMFICTX* m_context;
};

// Mail servers that do not wait for the replies of these callbacks make sessions much faster.
constexpr unsigned long unansweredSteps =
    SMFIP_NR_CONN | SMFIP_NR_HELO | SMFIP_NR_MAIL | SMFIP_NR_RCPT | SMFIP_NR_HDR;
// Of a message only the envelope and the headers matter; values come as they stand.
constexpr unsigned long wantedSteps =
    SMFIP_NOBODY | SMFIP_NOEOH | SMFIP_NODATA | SMFIP_NOUNKNOWN | SMFIP_HDR_LEADSPC;

constexpr unsigned long neededActions = SMFIF_ADDHDRS | SMFIF_CHGHDRS;

struct SessionState {
    explicit SessionState(Service& service) : m_session(service) {}

    Session m_session;
    unsigned long m_steps = 0; // what was negotiated
};

SessionState& s_state(SMFICTX* context) {
    auto* state = static_cast<SessionState*>(smfi_getpriv(context));
    if (state == nullptr) {
        state = new SessionState(*s_service);
        smfi_setpriv(context, state);
    }
    return *state;
}

sfsistat s_status(Reply reply) {
    switch (reply) {
    case Reply::carryOn:
        return SMFIS_CONTINUE;
    case Reply::accept:
        return SMFIS_ACCEPT;
    case Reply::reject:
        return SMFIS_REJECT;
    case Reply::discard:
        return SMFIS_DISCARD;
    case Reply::tempfail:
        break;
    }
    return SMFIS_TEMPFAIL;
}

// Runs one step of a session, which the mail server may not wait for. No exception passes through
// libmilter, which is C: a step that fails (memory) fails the message.
template<typename Step>
sfsistat s_step(SMFICTX* context, unsigned long unanswered, Step step) {
    auto const pass = s_service->callbacks().enter(std::numeric_limits<std::size_t>::max());
    try {
        auto& state = s_state(context);
        auto const reply = step(state.m_session);
        return (state.m_steps & unanswered) != 0 ? SMFIS_NOREPLY : s_status(reply);
    } catch (std::exception const& error) {
        s_service->reportError(error.what());
    }
    return SMFIS_TEMPFAIL;
}

std::string s_text(char const* text) {
    return text == nullptr ? std::string() : std::string(text);
}

// The bytes of an object, as sockets hold addresses.
template<typename Object>
std::string_view s_bytes(Object const& object) {
    return {reinterpret_cast<char const*>(&object), sizeof object};
}

IPAddress s_address(_SOCK_ADDR const* socket) {
    if (socket != nullptr && socket->sa_family == AF_INET6) {
        return IPAddress::fromNetwork(
            s_bytes(reinterpret_cast<sockaddr_in6 const*>(socket)->sin6_addr));
    }
    if (socket != nullptr && socket->sa_family == AF_INET) {
        return IPAddress::fromNetwork(
            s_bytes(reinterpret_cast<sockaddr_in const*>(socket)->sin_addr));
    }
    return {};
}

// What a session reads of the client; mail servers send other macros unless asked.
void s_askForMacros(SMFICTX* context) {
    std::string connect = "j v _ {client_addr} {client_name} {client_ptr} {client_resolve}";
    std::string mail = "i r {auth_type} {tls_version} {cipher} {cipher_bits}";
    std::string end = "i";
    smfi_setsymlist(context, SMFIM_CONNECT, connect.data());
    smfi_setsymlist(context, SMFIM_ENVFROM, mail.data());
    smfi_setsymlist(context, SMFIM_EOM, end.data());
}

// The parameters are libmilter's. NOLINTNEXTLINE(readability-function-size)
sfsistat s_onNegotiate(SMFICTX* context, unsigned long actions, unsigned long steps,
                       unsigned long /*reserved*/, unsigned long /*reserved*/,
                       unsigned long* wantedActions, unsigned long* wanted,
                       unsigned long* reserved1, unsigned long* reserved2) {
    if ((actions & neededActions) != neededActions) {
        return SMFIS_REJECT; // headers could be planted
    }
    if ((actions & SMFIF_SETSYMLIST) != 0) {
        s_askForMacros(context);
    }
    *wantedActions = actions & (neededActions | SMFIF_QUARANTINE | SMFIF_SETSYMLIST);
    *wanted = steps & (wantedSteps | unansweredSteps);
    *reserved1 = *reserved2 = 0;
    auto const given = *wanted;
    return s_step(context, 0, [context, given](Session&) {
        s_state(context).m_steps = given;
        return Reply::carryOn;
    });
}

sfsistat s_onConnect(SMFICTX* context, char* hostName, _SOCK_ADDR* address) {
    return s_step(context, SMFIP_NR_CONN, [&](Session& session) {
        Context server(context);
        session.connect(server, s_text(hostName), s_address(address));
        return Reply::carryOn;
    });
}

sfsistat s_onHelo(SMFICTX* context, char* name) {
    return s_step(context, SMFIP_NR_HELO, [name](Session& session) {
        session.helo(s_text(name));
        return Reply::carryOn;
    });
}

sfsistat s_onEnvelopeFrom(SMFICTX* context, char** arguments) {
    return s_step(context, SMFIP_NR_MAIL, [&](Session& session) {
        Context server(context);
        session.envelopeFrom(server, s_text(arguments[0]));
        return Reply::carryOn;
    });
}

sfsistat s_onRecipient(SMFICTX* context, char** arguments) {
    return s_step(context, SMFIP_NR_RCPT, [arguments](Session& session) {
        session.recipient(s_text(arguments[0]));
        return Reply::carryOn;
    });
}

sfsistat s_onHeader(SMFICTX* context, char* name, char* value) {
    return s_step(context, SMFIP_NR_HDR, [name, value](Session& session) {
        session.header(s_text(name), s_text(value));
        return Reply::carryOn;
    });
}

sfsistat s_onEndOfMessage(SMFICTX* context) {
    return s_step(context, 0, [context](Session& session) {
        Context server(context);
        return session.endOfMessage(server);
    });
}

sfsistat s_onAbort(SMFICTX* context) {
    return s_step(context, 0, [](Session& session) {
        session.abort();
        return Reply::carryOn;
    });
}

sfsistat s_onClose(SMFICTX* context) {
    auto const pass = s_service->callbacks().enter(std::numeric_limits<std::size_t>::max());
    delete static_cast<SessionState*>(smfi_getpriv(context));
    smfi_setpriv(context, nullptr);
    return SMFIS_CONTINUE;
}

} // namespace

bool registerFilter(Service& service) {
    s_service = &service;
    static char name[] = "qvmilter";
    smfiDesc filter{};
    filter.xxfi_name = name;
    filter.xxfi_version = SMFI_VERSION;
    filter.xxfi_flags = neededActions | SMFIF_QUARANTINE | SMFIF_SETSYMLIST;
    filter.xxfi_negotiate = s_onNegotiate;
    filter.xxfi_connect = s_onConnect;
    filter.xxfi_helo = s_onHelo;
    filter.xxfi_envfrom = s_onEnvelopeFrom;
    filter.xxfi_envrcpt = s_onRecipient;
    filter.xxfi_header = s_onHeader;
    filter.xxfi_eom = s_onEndOfMessage;
    filter.xxfi_abort = s_onAbort;
    filter.xxfi_close = s_onClose;
    return smfi_register(filter) == MI_SUCCESS;
}

} // namespace Quorvane::Milter
