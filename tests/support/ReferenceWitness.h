// SPDX-License-Identifier: Apache-2.0
//
// ReferenceWitness: an implementation that says, when it dies, how many references another one has
// at that moment.
#pragma once

#include "include2/QvaneRefcounted.h"

#include <cstdint>
#include <optional>

namespace Quorvane::Testing {

class ReferenceWitness : public virtual RefImpl {
  public:
    ReferenceWitness() = default;
    ~ReferenceWitness() override {
        if (m_other != nullptr) {
            *m_seen = m_other->references();
        }
    }

    // Both outlive this object.
    void watch(RefImpl const* other, std::optional<std::int32_t>* seen) {
        m_other = other;
        m_seen = seen;
    }

  private:
    RefImpl const* m_other = nullptr;
    std::optional<std::int32_t>* m_seen = nullptr;
};

} // namespace Quorvane::Testing
