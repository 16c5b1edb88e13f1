// SPDX-License-Identifier: Apache-2.0
#include "include2/HeaderException.h"
#include "MsgReceived.h"
#include "platform/Host.h"
#include "platform/Resolver.h"
#include "received/MsgReceivedImpl.h"
#include "received/ReceivedScanner.h"

#include <algorithm>
#include <utility>

namespace Quorvane {

namespace {

// Locations that HeaderExceptions report; programs match on them, so never renumber.
constexpr char receiveFile[] = "Receive";
constexpr unsigned int fromLine = 449;
constexpr unsigned int byLine = 458;
constexpr unsigned int reverseNameLine = 467;
constexpr unsigned int addressLine = 476;
constexpr unsigned int privateIPLine = 485;
constexpr unsigned int authenticatedLine = 494;
constexpr unsigned int receiveTimeLine = 503;
constexpr unsigned int isForgedLine = 513;
constexpr unsigned int setForgedLine = 522;

constexpr char receivedType[] = "received";

RefCounted<TypeAndValueImpl>* s_newRecord(std::string const& value) {
    return new RefCounted<TypeAndValueImpl>(new MsgReceivedImpl(value), false);
}

MsgReceivedImpl& s_record(TypeAndValueImpl* impl, unsigned int line) {
    auto* const record = MsgReceivedImpl::of(impl);
    if (record == nullptr) {
        throw HeaderException(receiveFile, line);
    }
    return *record;
}

// As s_isForged; `lookup` says how the look-up ended. When one failed, the address may be among the
// missing ones, so the name is not forged.
bool s_isForgedBy(IPAddress const& address, std::string const& name, LookupResult& lookup) {
    if (address.isNull() || name.empty()) {
        return false;
    }
    Host const host(name, true);
    auto const& addresses = host.addressList();
    bool const isConfirmed =
        std::find(addresses.begin(), addresses.end(), address) != addresses.end();
    lookup = isConfirmed ? LookupResult::answered : host.result();
    return !host.isNull() && lookup == LookupResult::answered && !isConfirmed;
}

} // namespace

// --- MsgReceivedImpl ----------------------------------------------------------------------------

MsgReceivedImpl::MsgReceivedImpl(std::string const& value) : HeaderImpl("Received", value) {}

MsgReceivedImpl::MsgReceivedImpl(ReceivedFields fields)
    : HeaderImpl("Received", {}), m_fields(std::move(fields)) {}

ReceivedFields const& MsgReceivedImpl::parsed() const {
    if (!m_fields.m_isParsed) {
        ReceivedScanner(mutableValue(), m_fields).parse();
    }
    return m_fields;
}

int MsgReceivedImpl::isForged() const {
    if (m_fields.m_forged == forgedNotKnown) {
        bool const isForged =
            s_isForgedBy(m_fields.m_address, m_fields.m_reverseName, m_fields.m_forgedLookup);
        m_fields.m_forged = isForged ? 1 : 0;
    }
    return m_fields.m_forged;
}

// --- MsgReceived: construction and assignment ---------------------------------------------------

MsgReceived::MsgReceived() = default;

MsgReceived::MsgReceived(std::string const& value) : Header(s_newRecord(value)) {}

MsgReceived::MsgReceived(MsgReceived const& other) = default;

MsgReceived::~MsgReceived() = default;

MsgReceived& MsgReceived::operator=(Header const& other) {
    if (other.isNull()) {
        resetWrapper(s_newRecord({}));
        return *this;
    }
    if (&other == this) {
        return *this;
    }
    // Released before the type is looked at: a handle that was refused a header holds nothing,
    // rather than the header it held before.
    resetWrapper(nullptr);
    if (other.typeLowerCase() != receivedType) {
        throw Exception("operator=", 2, nullptr, 0);
    }
    resetWrapper(s_newRecord(other.value()));
    return *this;
}

MsgReceived& MsgReceived::operator=(MsgReceived const& other) {
    return *this = static_cast<Header const&>(other);
}

std::string const& MsgReceived::type() const {
    static std::string const name = "Received";
    return name;
}

// --- MsgReceived: accessors ---------------------------------------------------------------------

std::string const& MsgReceived::from() const {
    return s_record(impl(), fromLine).from();
}

std::string const& MsgReceived::by() const {
    return s_record(impl(), byLine).by();
}

std::string const& MsgReceived::reverseName() const {
    return s_record(impl(), reverseNameLine).reverseName();
}

IPAddress const& MsgReceived::address() const {
    return s_record(impl(), addressLine).address();
}

bool MsgReceived::privateIP() const {
    return s_record(impl(), privateIPLine).privateIP();
}

bool MsgReceived::authenticated() const {
    return s_record(impl(), authenticatedLine).authenticated();
}

std::string const& MsgReceived::receiveTime() const {
    return s_record(impl(), receiveTimeLine).receiveTime();
}

int MsgReceived::isForged() const {
    return s_record(impl(), isForgedLine).isForged();
}

void MsgReceived::isForged(int forged) {
    s_record(impl(), setForgedLine).isForged(forged);
}

// --- names and DNS ------------------------------------------------------------------------------

bool s_isForged(IPAddress& address, std::string& name) {
    LookupResult lookup{};
    return s_isForgedBy(address, name, lookup);
}

bool s_getReverseName(IPAddress& address, std::string& name) {
    name.clear();
    HostName const found = Resolver::instance().getHostname(address);
    if (!found.isNull()) {
        name = found.asString();
    }
    return true;
}

} // namespace Quorvane
