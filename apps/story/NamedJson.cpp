// SPDX-License-Identifier: Apache-2.0
#include "apps/story/NamedJson.h"

#include <nlohmann/json.hpp>

namespace Quorvane {

nlohmann::ordered_json named(nlohmann::ordered_json json, Rules::RuleName const* name) {
    if (name != nullptr) {
        json["ruleName"] = name->m_name;
        if (!name->m_sentence.empty()) {
            json["ruleSentence"] = name->m_sentence;
        }
    }
    return json;
}

} // namespace Quorvane
