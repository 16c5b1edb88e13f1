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

// Mail servers that do not wait for the replies of these callbacks make sessions much faster. For
// older ones, which do wait, libmilter replies.
constexpr unsigned long unansweredSteps =
    SMFIP_NR_CONN | SMFIP_NR_HELO | SMFIP_NR_MAIL | SMFIP_NR_RCPT | SMFIP_NR_HDR;
// Of a message only the envelope and the headers matter; values come as they stand.
constexpr unsigned long wantedSteps =
    SMFIP_NOBODY | SMFIP_NOEOH | SMFIP_NODATA | SMFIP_NOUNKNOWN | SMFIP_HDR_LEADSPC;

// Bytes that a mail server may send at once; more ends the session. libmilter's own limit is below
// the length of a header that Postfix takes (header_size_limit, 102400 bytes).
constexpr std::size_t longestStep = 1U << 18U;

constexpr unsigned long neededActions = SMFIF_ADDHDRS | SMFIF_CHGHDRS;

// A mail server may go on with another client on the same connection. It then closes the session,
// and the next step begins another.
Session& s_session(SMFICTX* context) {
    auto* session = static_cast<Session*>(smfi_getpriv(context));
    if (session == nullptr) {
        session = new Session(*s_service);
        smfi_setpriv(context, session);
    }
    return *session;
}

sfsistat s_status(Reply reply) {
    switch (reply) {
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

void s_noteFailure(SMFICTX* context, char const* what) {
    if (auto* const session = static_cast<Session*>(smfi_getpriv(context)); session != nullptr) {
        session->failMessage();
    }
    s_service->reportError(what);
}

// Runs one step of a session, unless the daemon is about to end. No exception passes through
// libmilter, which is C: a step that fails (memory) fails the message. Most steps have no reply, so
// only the end of the message can tell the mail server.
template<typename Step>
void s_run(SMFICTX* context, Step step) {
    auto const pass = s_service->callbacks().enter(std::numeric_limits<std::size_t>::max());
    if (!pass.isIn()) {
        return;
    }
    try {
        step(s_session(context));
    } catch (std::exception const& error) {
        s_noteFailure(context, error.what());
    }
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
    std::string connect = "j v Z _ {client_addr} {client_name} {client_ptr} {client_resolve}";
    std::string mail = "i r s {auth_type} {auth_ssf} {tls_version} {cipher} {cipher_bits}";
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
    return SMFIS_CONTINUE;
}

sfsistat s_onConnect(SMFICTX* context, char* hostName, _SOCK_ADDR* address) {
    s_run(context, [&](Session& session) {
        Context server(context);
        session.connect(server, s_text(hostName), s_address(address));
    });
    return SMFIS_NOREPLY;
}

sfsistat s_onHelo(SMFICTX* context, char* name) {
    s_run(context, [name](Session& session) { session.helo(s_text(name)); });
    return SMFIS_NOREPLY;
}

sfsistat s_onEnvelopeFrom(SMFICTX* context, char** arguments) {
    s_run(context, [&](Session& session) {
        Context server(context);
        session.envelopeFrom(server, s_text(arguments[0]));
    });
    return SMFIS_NOREPLY;
}

sfsistat s_onRecipient(SMFICTX* context, char** arguments) {
    s_run(context, [arguments](Session& session) { session.recipient(s_text(arguments[0])); });
    return SMFIS_NOREPLY;
}

sfsistat s_onHeader(SMFICTX* context, char* name, char* value) {
    s_run(context, [name, value](Session& session) { session.header(name, value); });
    return SMFIS_NOREPLY;
}

sfsistat s_onEndOfMessage(SMFICTX* context) {
    auto reply = Reply::tempfail;
    s_run(context, [&](Session& session) {
        Context server(context);
        reply = session.endOfMessage(server);
    });
    return s_status(reply);
}

sfsistat s_onAbort(SMFICTX* context) {
    s_run(context, [](Session& session) { session.abort(); });
    return SMFIS_CONTINUE;
}

sfsistat s_onClose(SMFICTX* context) {
    delete static_cast<Session*>(smfi_getpriv(context));
    smfi_setpriv(context, nullptr);
    return SMFIS_CONTINUE;
}

} // namespace

bool registerFilter() {
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
    smfi_setmaxdatasize(longestStep);
    return smfi_register(filter) == MI_SUCCESS;
}

void useService(Service& service) {
    s_service = &service;
}

} // namespace Quorvane::Milter
