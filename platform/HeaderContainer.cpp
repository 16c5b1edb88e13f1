// SPDX-License-Identifier: Apache-2.0
#include "platform/HeaderContainer.h"

#include <utility>

namespace Quorvane {

HeaderContainerImpl::~HeaderContainerImpl() = default;

HeaderContainer::HeaderContainer() : m_wrapper(new RefCounted<HeaderContainerImpl>) {}

HeaderContainer::HeaderContainer(HeaderContainer const& other) {
    RefCountedImplCopy(m_wrapper, other.m_wrapper);
}

HeaderContainer& HeaderContainer::operator=(HeaderContainer const& other) {
    RefCountedImplCopy(m_wrapper, other.m_wrapper);
    return *this;
}

HeaderContainer::~HeaderContainer() {
    delete m_wrapper;
}

std::list<Header> const& HeaderContainer::headers() const {
    return m_wrapper->impl()->m_headers;
}

void HeaderContainer::append(Header const& header) {
    m_wrapper->impl()->m_headers.push_back(header);
}

void HeaderContainer::append(std::string name, std::string value) {
    m_wrapper->impl()->m_headers.emplace_back(std::move(name), std::move(value));
}

} // namespace Quorvane
