// SPDX-License-Identifier: Apache-2.0
#include "platform/TrustedMTASet.h"

#include "platform/internal/RangeTable.h"
#include "platform/Snapshot.h"

#include <utility>
#include <variant>

namespace Quorvane {

namespace {

using AddressSet = internal::RangeTable<std::monostate>;

AddressSet s_setOf(std::vector<IPPrefix> const& prefixes) {
    std::vector<AddressSet::Entry> entries;
    entries.reserve(prefixes.size());
    for (auto const& prefix : prefixes) {
        entries.emplace_back(prefix, std::monostate{});
    }
    return AddressSet(entries);
}

} // namespace

struct TrustedMTASet::Content {
    AddressSet m_trusted;
    AddressSet m_antiSpam;
    AddressSet m_internal;
    IPv6Relays m_ipv6;
};

TrustedMTASet::TrustedMTASet() : TrustedMTASet({}, {}) {}

TrustedMTASet::TrustedMTASet(std::vector<IPPrefix> const& trusted,
                             std::vector<IPPrefix> const& antiSpam,
                             std::vector<IPPrefix> const& internal, IPv6Relays ipv6)
    : m_content(new Content{s_setOf(trusted), s_setOf(antiSpam), s_setOf(internal), ipv6}) {}

TrustedMTASet::TrustedMTASet(std::shared_ptr<Content const> content)
    : m_content(std::move(content)) {}

TrustedMTASet::~TrustedMTASet() = default;

bool TrustedMTASet::isTrustedMTA(IPAddress const& address) const {
    return m_content->m_trusted.find(address) != nullptr;
}

bool TrustedMTASet::isTrustedAntiSpamMTA(IPAddress const& address) const {
    return m_content->m_antiSpam.find(address) != nullptr;
}

bool TrustedMTASet::isInternalMTA(IPAddress const& address) const {
    return m_content->m_internal.find(address) != nullptr;
}

bool TrustedMTASet::countsAsV6(IPAddress const& address) const {
    return m_content->m_ipv6 == IPv6Relays::stop && address.isV6();
}

// What is in force. Every thread wraps them in a set of its own, because the reference count
// lives in the set.
struct TrustedMTASetRef::InForce {
    using Slot = Snapshot<TrustedMTASet::Content, TrustedMTASetRef>;

    // The set is nobody's until there was memory for the wrapper.
    static TrustedMTASetRef wrap(std::shared_ptr<TrustedMTASet::Content const> const& content) {
        std::unique_ptr<TrustedMTASet> set(new TrustedMTASet(content));
        TrustedMTASetRef handle(set.get());
        static_cast<void>(set.release());
        return handle;
    }

    static Slot& slot() {
        static auto* const slot = new Slot(TrustedMTASet().m_content, wrap);
        return *slot;
    }
};

TrustedMTASetRef::TrustedMTASetRef(TrustedMTASet* set)
    : Ref<TrustedMTASet>(new RefCounted<TrustedMTASet>(set, false)) {}

TrustedMTASetRef::~TrustedMTASetRef() = default;

TrustedMTASetRef TrustedMTASetRef::instance(bool /*reload*/) {
    return InForce::slot().read();
}

void TrustedMTASetRef::install(TrustedMTASet const& set) {
    InForce::slot().publish(set.m_content);
}

void TrustedMTASetRef::install(std::vector<IPPrefix> const& trusted,
                               std::vector<IPPrefix> const& antiSpam,
                               std::vector<IPPrefix> const& internal, IPv6Relays ipv6) {
    install(TrustedMTASet(trusted, antiSpam, internal, ipv6));
}

} // namespace Quorvane
