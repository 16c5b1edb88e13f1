// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Session.h"

#include "platform/HeaderReader.h"
#include "platform/Strings.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace Quorvane::Milter {

namespace {

bool s_isNamed(std::string_view name, std::string_view other) {
    return stringCompareNoCase(name, other, 0) == 0;
}

EmailAddress s_headerFrom(HeaderContainer const& headers) {
    EmailAddress address;
    for (auto const& header : headers.headers()) {
        if (s_isNamed(header.type(), "from")) {
            address = EmailAddress::rfc5322Parse(header.value(), true);
        }
    }
    return address;
}

// From the last to the first: whether the mail server counts on after a removal or not, the numbers
// before it stay.
bool s_removeAll(MailServer& server, char const* name, int count) {
    for (int index = count; index > 0; --index) {
        if (!server.removeHeader(name, index)) {
            return false;
        }
    }
    return true;
}

} // namespace

Session::Session(Service& service)
    : m_service(service), m_snapshot(service.current()),
      m_place(service.sessions().enter(m_snapshot->milter().m_maxSessions)) {
    m_service.metrics().sessions(1);
}

Session::~Session() {
    m_service.metrics().sessions(-1);
}

void Session::connect(MailServer& server, std::string const& hostName, IPAddress const& address) {
    m_isClientKnown = false;
    m_client = clientOf(server, hostName, address);
    m_isClientKnown = true;
}

void Session::helo(std::string const& name) {
    bool const wasKnown = std::exchange(m_isClientKnown, false);
    m_client.m_helo = heloNameOf(name);
    m_isClientKnown = wasKnown;
}

void Session::envelopeFrom(MailServer& server, std::string const& address) {
    abort();
    m_message.m_envelopeFrom = address;
    m_message.m_isAuthenticated = !server.macro("{auth_type}").empty();
}

void Session::recipient(std::string const& address) {
    if (m_message.m_recipient.empty()) {
        m_message.m_recipient = address;
    }
}

// Headers named like ours are counted first: they go, whatever becomes of the message.
void Session::header(std::string_view name, std::string_view value) {
    auto const& limits = m_snapshot->limits();
    m_message.m_foreignResults += s_isNamed(name, resultHeader) ? 1 : 0;
    m_message.m_foreignReasons += s_isNamed(name, reasonsHeader) ? 1 : 0;
    if (!m_place.isIn()) {
        return;
    }
    auto const size = m_message.m_headers.size() + name.size() + value.size() + 3;
    if (++m_message.m_headerCount > limits.m_maxFields || size > limits.m_maxBytes) {
        m_message.m_isOdd = true;
        return;
    }
    if (s_isNamed(name, "received") && ++m_message.m_hopCount > limits.m_maxHops) {
        return; // what is so old says nothing
    }
    m_message.m_headers.append(name).append(":").append(value).append("\r\n");
}

// A string that a short one is assigned to keeps its memory; one that is moved from gives it away.
void Session::abort() {
    Message const gone = std::move(m_message);
    m_message = {};
}

// Why the message is not judged, for the log; null: it is.
char const* Session::exemption() const {
    auto const& settings = m_snapshot->milter();
    if (settings.m_exemptAuthenticated != 0 && m_message.m_isAuthenticated) {
        return "authenticated";
    }
    bool const isListed =
        std::any_of(settings.m_exempt.begin(), settings.m_exempt.end(),
                    [this](IPPrefix const& prefix) { return prefix.contains(m_client.m_address); });
    return isListed ? "network" : nullptr;
}

// What stands there before us, a sender may have written.
bool Session::removeForeign(MailServer& server) const {
    return s_removeAll(server, resultHeader, m_message.m_foreignResults) &&
           s_removeAll(server, reasonsHeader, m_message.m_foreignReasons);
}

// The milter protocol knows no status of a message, so that one stays 0.
MessageFacts Session::facts(MailServer& server, HeaderContainer const& headers) const {
    MessageFacts facts;
    facts.m_envelopeFrom = EmailAddress::rfc5322Parse(m_message.m_envelopeFrom, true);
    facts.m_recipient = EmailAddress::rfc5322Parse(m_message.m_recipient, true);
    facts.m_headerFrom = s_headerFrom(headers);
    if (!m_client.m_address.isNull()) {
        facts.m_client = m_client.m_address;
        facts.m_currentReceived = receivedText(server, m_client);
        facts.m_currentIsForged = forgedFlag(server, m_client);
    }
    return facts;
}

// The text of the headers is not needed any more, so the scan may have its memory.
Judgement Session::scan(MailServer& server) {
    try {
        auto const headers = HeaderReader::read(std::exchange(m_message.m_headers, {}));
        auto const known = facts(server, headers);
        auto const& host = *m_snapshot->m_host;
        auto record = host.scan(headers, known, RecordDepth::steps);
        if (record.failure) {
            m_service.reportError(*record.failure);
        }
        auto judgement = judgementOf(std::move(record), m_snapshot->milter(), host.ruleNames());
        judgement.m_hop = known.m_currentReceived;
        return judgement;
    } catch (std::exception const& error) {
        m_service.reportError(error.what());
        return failureOf(Failure::scanFailed);
    }
}

Judgement Session::judge(MailServer& server) {
    if (!m_place.isIn()) {
        return failureOf(Failure::overload);
    }
    if (m_message.m_isOdd) {
        return failureOf(Failure::oddMessage);
    }
    if (m_message.m_hasFailed || !m_isClientKnown) {
        return failureOf(Failure::scanFailed);
    }
    if (m_snapshot->m_host == nullptr) {
        return failureOf(Failure::noRules);
    }
    auto const pass = m_service.scans().enter(m_snapshot->milter().m_maxScans);
    return pass.isIn() ? scan(server) : failureOf(Failure::overload);
}

Reply Session::apply(MailServer& server, Judgement const& judgement, Action const& action) const {
    auto const& settings = m_snapshot->milter();
    if (action.m_isTemporary) {
        server.replyText("451", "4.7.1", "This message cannot be judged now; try again later");
        return Reply::tempfail;
    }
    if (action.m_action == VerdictAction::reject) {
        server.replyText("550", "5.7.1", settings.m_rejectText);
        return Reply::reject;
    }
    if (action.m_action == VerdictAction::discard) {
        return Reply::discard;
    }
    if (action.m_action == VerdictAction::quarantine && !server.quarantine(resultText(judgement))) {
        return Reply::tempfail;
    }
    if (action.m_action == VerdictAction::accept) {
        return Reply::accept;
    }
    bool isDone = server.addHeader(resultHeader, resultText(judgement));
    if (isDone && settings.m_addReasons != 0 && judgement.m_record) {
        isDone = server.addHeader(reasonsHeader, judgement.m_record->answer.getReasons());
    }
    return isDone ? Reply::accept : Reply::tempfail;
}

Reply Session::finish(MailServer& server) {
    if (!removeForeign(server)) {
        return Reply::tempfail;
    }
    if (auto const* const why = exemption(); why != nullptr) {
        m_service.reportExempted(server.macro("i"), why);
        return Reply::accept;
    }
    auto const start = std::chrono::steady_clock::now();
    auto const& settings = m_snapshot->milter();
    auto const judgement = judge(server);
    auto const action = actionOn(judgement, settings);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    m_service.report(
        {server.macro("i"), judgement, action, time.count(), settings.m_logDetails != 0});
    return apply(server, judgement, action);
}

Reply Session::endOfMessage(MailServer& server) {
    auto reply = Reply::tempfail;
    try {
        reply = finish(server);
    } catch (std::exception const& error) {
        m_service.reportError(error.what());
    }
    abort();
    return reply;
}

} // namespace Quorvane::Milter
