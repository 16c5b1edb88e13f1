// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderAnswerImpl: the counted record of DeepHeaderAnswer. The engine fills it at most
// once; it must not be read meanwhile.
#pragma once

#include "include2/QvaneRefcounted.h"

#include <cstdint>
#include <string>

namespace Quorvane {

class DeepHeaderAnswerImpl : public virtual RefImpl, public Recycled {
  public:
    DeepHeaderAnswerImpl() = default;
    ~DeepHeaderAnswerImpl() override;

    // One line for a log, built afresh at each call.
    std::string getReasons() const;

    std::int32_t m_node = 0;       // tree node or elite code that decided; 0: none
    std::int64_t m_nodeValue1 = 0; // training counts of the deciding tree node
    std::int64_t m_nodeValue2 = 0;
    std::int64_t m_nodeValue3 = 0;
    std::uint8_t m_nodeFlag = 0; // leaf mark of the deciding tree node
    double m_confidenceDegree = -1.0;
    double m_supportDegree = 0.0;
    double m_adjust = 0.0;
    std::string m_adjustReason;
    bool m_isSpam = false;
    bool m_isHam = false;
    std::string m_ips;
};

} // namespace Quorvane
