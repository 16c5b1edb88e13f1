// SPDX-License-Identifier: Apache-2.0
//
// The reasons text of an answer. Log readers take it apart, so the blanks inside and around the
// braces stay as they are, uneven as they look.
#include "scanner/records/DeepHeaderAnswerImpl.h"

#include <locale>
#include <sstream>

namespace Quorvane {

namespace {

constexpr char noUntrustedIP[] = " No untrusted public ip! ";

} // namespace

std::string DeepHeaderAnswerImpl::getReasons() const {
    if (m_node == 0) {
        return m_ips.empty() ? noUntrustedIP : m_ips;
    }
    std::ostringstream text;
    text.imbue(std::locale::classic()); // a host's locale must not group the digits
    text << "Node:{" << m_node << "} ";
    text << "Confidence degree{ " << m_confidenceDegree << " } ";
    text << "Support degree{ " << m_supportDegree << " } ";
    text << "IP{ " << m_ips << " } ";
    if (m_adjust != 0.0) {
        text << "Adjust{ " << m_adjust << ", " << m_adjustReason << "} ";
    }
    return text.str();
}

} // namespace Quorvane
