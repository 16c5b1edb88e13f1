// SPDX-License-Identifier: Apache-2.0
//
// Builders for the queries that tests post.
#pragma once

#include "DeepHeaderQuery.h"
#include "platform/HeaderReader.h"

#include <string>

namespace Quorvane::Testing {

// What goes into a query; every member starts at what a host without opinions would give.
struct Message {
    HeaderContainer m_headers;
    Header m_currentReceived;
    int m_currentIsForged = 0;
    DeepHeaderSettings m_settings;
    EmailAddress m_from;
    EmailAddress m_headerFrom;
    EmailAddress m_recipient;
    RefMessageProperties m_properties{true};

    Message() = default;
    explicit Message(std::string const& headerBlock) : m_headers(HeaderReader::read(headerBlock)) {}

    DeepHeaderQuery query() const {
        return {m_headers, m_currentReceived, m_settings,  m_currentIsForged,
                m_from,    m_headerFrom,      m_recipient, m_properties};
    }
};

inline EmailAddress address(std::string const& text) {
    return EmailAddress::rfc5322Parse(text, true);
}

// A header of the everyday shape.
inline std::string received(std::string const& helo, std::string const& reverseName,
                            std::string const& ip, std::string const& by) {
    return "Received: from " + helo + " (" + reverseName + " [" + ip + "]) by " + by + "\n";
}

} // namespace Quorvane::Testing
