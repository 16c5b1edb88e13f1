// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderQuery.h"

#include "scanner/records/DeepHeaderQueryImpl.h"
#include "scanner/records/SharingCopy.h"

namespace Quorvane {

template class RefCounted<DeepHeaderQueryImpl>;

DeepHeaderQueryImpl::~DeepHeaderQueryImpl() = default;

DeepHeaderQuery::DeepHeaderQuery(HeaderContainer const& headers, Header const& currentReceived,
                                 DeepHeaderSettings const& settings, int currentIsForged,
                                 EmailAddress const& from, EmailAddress const& headerFrom,
                                 EmailAddress const& recipient,
                                 RefMessageProperties const& messageProperties) {
    auto wrapper = std::make_unique<RefCounted<DeepHeaderQueryImpl>>();
    auto& record = *wrapper->impl();
    record.m_headers = headers;
    record.m_currentReceived = currentReceived;
    record.m_currentIsForged = currentIsForged;
    record.m_settings = settings;
    record.m_from = from;
    record.m_headerFrom = headerFrom;
    record.m_recipient = recipient;
    record.m_messageProperties = messageProperties;
    m_wrapper = wrapper.release();
}

DeepHeaderQuery::DeepHeaderQuery(DeepHeaderQuery const& other)
    : m_wrapper(s_share(other.m_wrapper)) {}

DeepHeaderQuery& DeepHeaderQuery::operator=(DeepHeaderQuery const& other) {
    s_shareAssign(m_wrapper, other.m_wrapper);
    return *this;
}

DeepHeaderQuery::~DeepHeaderQuery() {
    delete m_wrapper;
}

DeepHeaderSettings const& DeepHeaderQuery::settings() const {
    return m_wrapper->impl()->m_settings;
}

RefMessageProperties const& DeepHeaderQuery::messageProperties() const {
    return m_wrapper->impl()->m_messageProperties;
}

HeaderContainer const& DeepHeaderQuery::headers() const {
    return m_wrapper->impl()->m_headers;
}

Header const& DeepHeaderQuery::currentReceived() const {
    return m_wrapper->impl()->m_currentReceived;
}

int DeepHeaderQuery::currentIsForged() const {
    return m_wrapper->impl()->m_currentIsForged;
}

EmailAddress const& DeepHeaderQuery::from() const {
    return m_wrapper->impl()->m_from;
}

EmailAddress const& DeepHeaderQuery::headerFrom() const {
    return m_wrapper->impl()->m_headerFrom;
}

EmailAddress const& DeepHeaderQuery::recipient() const {
    return m_wrapper->impl()->m_recipient;
}

} // namespace Quorvane
