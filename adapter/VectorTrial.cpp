// SPDX-License-Identifier: Apache-2.0
#include "adapter/VectorTrial.h"

#include "scanner/records/RecordAccess.h"

namespace Quorvane {

DeepHeaderQuery vectorQuery(DeepHeaderSettings const& settings) {
    return {HeaderContainer(), Header(),       settings,       0,
            EmailAddress(),    EmailAddress(), EmailAddress(), RefMessageProperties(true)};
}

Alternative VectorTrial::judge(AttributeVector const& attributes) {
    DeepHeaderAdapter::MsgProperties props;
    props.attributes = attributes;
    DeepHeaderAnswer answer;
    m_engine.getResults(RecordAccess::record(answer), m_query, props);
    return {answer.isSpam(), answer.isHam(), props.decision, answer.getNode(), {}};
}

} // namespace Quorvane
