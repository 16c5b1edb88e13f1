// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderQueryImpl: the counted record of DeepHeaderQuery. Written once, by the query's
// constructor, then only read.
#pragma once

#include "include2/QvaneRefcounted.h"
#include "platform/DeepHeaderSettings.h"
#include "platform/EmailAddress.h"
#include "platform/Header.h"
#include "platform/HeaderContainer.h"
#include "platform/MessageProperties.h"

#include <cstdint>

namespace Quorvane {

class DeepHeaderQueryImpl : public virtual RefImpl, public Recycled {
  public:
    DeepHeaderQueryImpl() = default;
    ~DeepHeaderQueryImpl() override;

    HeaderContainer m_headers;
    Header m_currentReceived;
    std::int32_t m_currentIsForged = 0;
    DeepHeaderSettings m_settings;
    EmailAddress m_from;
    EmailAddress m_headerFrom;
    EmailAddress m_recipient;
    RefMessageProperties m_messageProperties{false};
};

} // namespace Quorvane
