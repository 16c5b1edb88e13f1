// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/MessageIdentity.h"

#include "apps/text/Utf8.h"
#include "platform/HeaderText.h"
#include "platform/Strings.h"

#include <algorithm>

namespace Quorvane {

namespace {

// The place of a field; null: it does not tell.
std::optional<std::string>* s_place(MessageIdentity& identity, std::string const& name) {
    if (isSameNoCase(name, "date")) {
        return &identity.m_date;
    }
    if (isSameNoCase(name, "message-id")) {
        return &identity.m_messageId;
    }
    if (isSameNoCase(name, "from")) {
        return &identity.m_from;
    }
    return isSameNoCase(name, "subject") ? &identity.m_subject : nullptr;
}

std::string s_text(std::string value) {
    std::erase_if(value, [](char c) { return c == '\r' || c == '\n'; });
    std::replace(value.begin(), value.end(), '\t', ' ');
    auto const start = std::min(value.find_first_not_of(' '), value.size());
    return toUtf8(headerText(toUtf8(std::string_view(value).substr(start))));
}

} // namespace

MessageIdentity identityOf(HeaderContainer const& headers) {
    MessageIdentity identity;
    for (auto const& header : headers.headers()) {
        if (auto* const place = s_place(identity, header.type())) {
            *place = s_text(header.value());
        }
    }
    return identity;
}

} // namespace Quorvane
