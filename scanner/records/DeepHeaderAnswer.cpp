// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderAnswer.h"

#include "scanner/records/DeepHeaderAnswerImpl.h"
#include "scanner/records/SharingCopy.h"

namespace Quorvane {

template class RefCounted<DeepHeaderAnswerImpl>;

DeepHeaderAnswerImpl::~DeepHeaderAnswerImpl() = default;

DeepHeaderAnswer::DeepHeaderAnswer() : m_wrapper(new RefCounted<DeepHeaderAnswerImpl>) {}

DeepHeaderAnswer::DeepHeaderAnswer(DeepHeaderAnswer const& other)
    : m_wrapper(s_share(other.m_wrapper)) {}

DeepHeaderAnswer& DeepHeaderAnswer::operator=(DeepHeaderAnswer const& other) {
    s_shareAssign(m_wrapper, other.m_wrapper);
    return *this;
}

DeepHeaderAnswer::~DeepHeaderAnswer() {
    delete m_wrapper;
}

float DeepHeaderAnswer::confidenceDegree() const {
    return static_cast<float>(m_wrapper->impl()->m_confidenceDegree);
}

bool DeepHeaderAnswer::isSpam() const {
    return m_wrapper->impl()->m_isSpam;
}

bool DeepHeaderAnswer::isHam() const {
    return m_wrapper->impl()->m_isHam;
}

int DeepHeaderAnswer::getNode() const {
    return m_wrapper->impl()->m_node;
}

std::string const& DeepHeaderAnswer::getIPs() const {
    return m_wrapper->impl()->m_ips;
}

std::string DeepHeaderAnswer::getReasons() const {
    return m_wrapper->impl()->getReasons();
}

} // namespace Quorvane
