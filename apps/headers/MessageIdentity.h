// SPDX-License-Identifier: Apache-2.0
//
// MessageIdentity: what tells people which message it is. Plain data, and hostile: it came out of
// the message.
#pragma once

#include "platform/HeaderContainer.h"

#include <optional>
#include <string>

namespace Quorvane {

// The texts are UTF-8 on one line, with encoded words decoded. Empty: there is no such field.
struct MessageIdentity {
    std::optional<std::string> m_date; // as the sender wrote it
    std::optional<std::string> m_messageId;
    std::optional<std::string> m_from;
    std::optional<std::string> m_subject;
};

// Of several fields of one name the last counts, as it does for the verdict.
MessageIdentity identityOf(HeaderContainer const& headers);

} // namespace Quorvane
