// SPDX-License-Identifier: Apache-2.0
//
// RecordAccess: gives access to the counted record of a query or answer handle: to the engine,
// which fills answers, and to programs that show more of an answer than the public class does.
#pragma once

#include "DeepHeaderAnswer.h"
#include "DeepHeaderQuery.h"
#include "scanner/records/DeepHeaderAnswerImpl.h"
#include "scanner/records/DeepHeaderQueryImpl.h"

namespace Quorvane {

class RecordAccess {
  public:
    static DeepHeaderAnswerImpl& record(DeepHeaderAnswer const& answer) {
        return *answer.m_wrapper->impl();
    }
    static DeepHeaderQueryImpl& record(DeepHeaderQuery const& query) {
        return *query.m_wrapper->impl();
    }
};

} // namespace Quorvane
