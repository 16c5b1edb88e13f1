// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderAnswer.h"

#include "scanner/records/DeepHeaderAnswerImpl.h"
#include "scanner/records/SharingCopy.h"

#include <array>
#include <charconv>

namespace Quorvane {

template class RefCounted<DeepHeaderAnswerImpl>;

namespace {

constexpr char noUntrustedIP[] = " No untrusted public ip! ";

// As an output stream in the "C" locale writes it, whatever the locale of the host.
void s_append(std::string& text, double number) {
    constexpr int precision = 6;
    std::array<char, 32> digits{};
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::general, precision)
                         .ptr;
    text.append(digits.data(), end);
}

} // namespace

DeepHeaderAnswerImpl::~DeepHeaderAnswerImpl() = default;

// Log readers parse this text, so the blanks inside and around the braces stay as they are, uneven
// as they look.
std::string DeepHeaderAnswerImpl::getReasons() const {
    if (m_node == 0) {
        return m_ips.empty() ? noUntrustedIP : m_ips;
    }
    std::string text = "Node:{" + std::to_string(m_node) + "} ";
    text += "Confidence degree{ ";
    s_append(text, m_confidenceDegree);
    text += " } Support degree{ ";
    s_append(text, m_supportDegree);
    text += " } IP{ " + m_ips + " } ";
    if (m_adjust != 0.0) {
        text += "Adjust{ ";
        s_append(text, m_adjust);
        text += ", " + m_adjustReason + "} ";
    }
    return text;
}

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
