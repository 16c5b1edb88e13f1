// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderAnswer: the verdict of one scan.
//
// A handle over a counted record: copies share the record. Once postQuery has returned it, an
// answer no longer changes; handles may then be read, copied and destroyed on different threads.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"

#include <string>

namespace Quorvane {

class DeepHeaderAnswerImpl;

class QV_API DeepHeaderAnswer {
  public:
    // No verdict: node 0, confidence -1, neither spam nor ham.
    DeepHeaderAnswer();
    DeepHeaderAnswer(DeepHeaderAnswer const& other);
    DeepHeaderAnswer& operator=(DeepHeaderAnswer const& other);
    virtual ~DeepHeaderAnswer();

    // The estimated probability of spam (0..1) that the deciding rule gives; -1 when none decided.
    float confidenceDegree() const;
    // The probability reached the spam threshold of the query. Never both this and isHam.
    bool isSpam() const;
    // The probability of ham reached the ham threshold.
    bool isHam() const;
    // The number of the deciding tree node or elite rule; 0 when none decided.
    int getNode() const;
    // The untrusted public addresses of the trail, at most two, separated by a comma.
    std::string const& getIPs() const;
    // One line for a log or a header field.
    std::string getReasons() const;

  private:
    friend class RecordAccess;
    RefCounted<DeepHeaderAnswerImpl>* m_wrapper;
};

} // namespace Quorvane
