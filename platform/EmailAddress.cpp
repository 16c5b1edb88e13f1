// SPDX-License-Identifier: Apache-2.0
#include "platform/EmailAddress.h"

#include "platform/ForkBarrier.h"
#include "platform/internal/AddressText.h"
#include "platform/internal/MailLibrary.h"
#include "platform/internal/PlainAddress.h"

#include <cstddef>
#include <cstring>
#include <gmime/gmime.h>
#include <memory>
#include <optional>
#include <string_view>

namespace Quorvane {

namespace {

struct Unref {
    void operator()(InternetAddressList* list) const { g_object_unref(list); }
};

using List = std::unique_ptr<InternetAddressList, Unref>;

// Lives as long as the process and is only read once made.
GMimeParserOptions* s_makeOptions(GMimeRfcComplianceMode mode) {
    startMailLibrary();
    auto* const options = g_mime_parser_options_new();
    g_mime_parser_options_set_address_compliance_mode(options, mode);
    return options;
}

GMimeParserOptions* s_options(bool lenient) {
    static auto* const loose = s_makeOptions(GMIME_RFC_COMPLIANCE_LOOSE);
    static auto* const strict = s_makeOptions(GMIME_RFC_COMPLIANCE_STRICT);
    return lenient ? loose : strict;
}

// Null for a group, for a mailbox without "@", such as the "Doe" of the unquoted name
// "Doe, John <john@host.example>", and for one with a second "@" in a literal: there may be more of
// these than the header has, because they are doubled before GMime looks.
InternetAddressMailbox* s_usable(InternetAddress* address) {
    if (!INTERNET_ADDRESS_IS_MAILBOX(address)) {
        return nullptr;
    }
    auto* const mailbox = INTERNET_ADDRESS_MAILBOX(address);
    bool const hasAt = mailbox->addr != nullptr && mailbox->at >= 0;
    return hasAt && std::strchr(mailbox->addr + mailbox->at + 1, '@') == nullptr ? mailbox
                                                                                 : nullptr;
}

InternetAddressMailbox* s_firstMember(InternetAddress* address) {
    if (!INTERNET_ADDRESS_IS_GROUP(address)) {
        return nullptr;
    }
    auto* const members = internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address));
    int const count = members == nullptr ? 0 : internet_address_list_length(members);
    for (int i = 0; i < count; ++i) {
        if (auto* const mailbox = s_usable(internet_address_list_get_address(members, i))) {
            return mailbox;
        }
    }
    return nullptr;
}

// Groups do not nest (RFC 5322 section 3.4), so members of members do not count.
InternetAddressMailbox* s_firstMailbox(InternetAddressList* list) {
    for (int i = 0; i < internet_address_list_length(list); ++i) {
        auto* const address = internet_address_list_get_address(list, i);
        if (auto* const mailbox = s_usable(address)) {
            return mailbox;
        }
        if (auto* const member = s_firstMember(address)) {
            return member;
        }
    }
    return nullptr;
}

} // namespace

EmailAddress EmailAddress::rfc5322Parse(std::string const& text, bool lenient) {
    EmailAddress result;
    if (auto const plain = internal::plainAddress(text)) {
        result.m_localPart = plain->m_localPart;
        result.m_domain = plain->m_domain;
        return result;
    }
    auto const prepared = internal::prepareAddressText(text, lenient);
    if (!prepared) {
        return result;
    }
    auto* const options = s_options(lenient);
    ForkBarrier const barrier;
    List const list(internet_address_list_parse(options, prepared->m_text.c_str()));
    auto const* const mailbox = list == nullptr ? nullptr : s_firstMailbox(list.get());
    if (mailbox == nullptr) {
        return result;
    }
    std::string_view const address(mailbox->addr);
    auto const at = static_cast<std::size_t>(mailbox->at);
    auto const domain = address.substr(at + 1);
    if (!domain.empty()) {
        result.m_localPart = internal::unquoted(prepared->original(address.substr(0, at)));
        result.m_domain = prepared->original(domain);
    }
    return result;
}

} // namespace Quorvane
