// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "rules/model/RuleError.h"

#include <functional>
#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

// The kind of the RuleError that `work` ends with; fails when it ends without one.
inline RuleError::Kind kindOf(std::function<void()> const& work) {
    try {
        work();
    } catch (RuleError const& error) {
        return error.kind();
    }
    ADD_FAILURE() << "nothing was thrown";
    return RuleError::Kind::badData;
}

} // namespace Quorvane::Testing
