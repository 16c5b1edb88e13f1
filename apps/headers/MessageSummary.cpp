// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/MessageSummary.h"

#include "apps/headers/ReceivedDate.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderText.h"

#include <algorithm>

namespace Quorvane {

namespace {

// The place of a field; null: it is none of the summary.
std::optional<std::string>* s_place(MessageSummary& summary, std::string const& name) {
    if (name == "date") {
        return &summary.m_date;
    }
    if (name == "message-id") {
        return &summary.m_messageId;
    }
    if (name == "from") {
        return &summary.m_from;
    }
    return name == "subject" ? &summary.m_subject : nullptr;
}

std::string s_text(std::string value) {
    std::erase_if(value, [](char c) { return c == '\r' || c == '\n'; });
    std::replace(value.begin(), value.end(), '\t', ' ');
    auto const start = std::min(value.find_first_not_of(' '), value.size());
    return toUtf8(headerText(toUtf8(std::string_view(value).substr(start))));
}

} // namespace

MessageSummary summaryOf(HeaderContainer const& headers) {
    MessageSummary summary;
    for (auto const& header : headers.headers()) {
        if (auto* const place = s_place(summary, header.typeLowerCase())) {
            *place = s_text(header.value());
        }
    }
    summary.m_received = receivedDate(headers);
    return summary;
}

} // namespace Quorvane
