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

struct TrustedMTASet::Prefixes {
    AddressSet m_trusted;
    AddressSet m_antiSpam;
    AddressSet m_internal;
};

TrustedMTASet::TrustedMTASet() : TrustedMTASet({}, {}, {}) {}

TrustedMTASet::TrustedMTASet(std::vector<IPPrefix> const& trusted,
                             std::vector<IPPrefix> const& antiSpam,
                             std::vector<IPPrefix> const& internal)
    : m_prefixes(new Prefixes{s_setOf(trusted), s_setOf(antiSpam), s_setOf(internal)}) {}

TrustedMTASet::TrustedMTASet(std::shared_ptr<Prefixes const> prefixes)
    : m_prefixes(std::move(prefixes)) {}

TrustedMTASet::~TrustedMTASet() = default;

bool TrustedMTASet::isTrustedMTA(IPAddress const& address) const {
    return m_prefixes->m_trusted.find(address) != nullptr;
}

bool TrustedMTASet::isTrustedAntiSpamMTA(IPAddress const& address) const {
    return m_prefixes->m_antiSpam.find(address) != nullptr;
}

bool TrustedMTASet::isInternalMTA(IPAddress const& address) const {
    return m_prefixes->m_internal.find(address) != nullptr;
}

// The prefixes in force. Every thread wraps them in a set of its own, because the reference count
// lives in the set.
struct TrustedMTASetRef::InForce {
    using Slot = Snapshot<TrustedMTASet::Prefixes, TrustedMTASetRef>;

    static TrustedMTASetRef wrap(std::shared_ptr<TrustedMTASet::Prefixes const> const& prefixes) {
        return TrustedMTASetRef(new TrustedMTASet(prefixes));
    }

    static Slot& slot() {
        static auto* const slot = new Slot(TrustedMTASet().m_prefixes, wrap);
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
    InForce::slot().publish(set.m_prefixes);
}

void TrustedMTASetRef::install(std::vector<IPPrefix> const& trusted,
                               std::vector<IPPrefix> const& antiSpam,
                               std::vector<IPPrefix> const& internal) {
    install(TrustedMTASet(trusted, antiSpam, internal));
}

} // namespace Quorvane
