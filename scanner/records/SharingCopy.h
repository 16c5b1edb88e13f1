// SPDX-License-Identifier: Apache-2.0
//
// The copy and the assignment of the public handles: sharing, never cloning. A handle whose wrapper
// holds no record cannot be copied: an Exception of category 4.
#pragma once

#include "include2/QvaneRefcounted.h"

#include <memory>

namespace Quorvane {

template<typename T>
RefCounted<T>* s_share(RefCounted<T> const* source) {
    return new RefCounted<T>(source->impl(), true);
}

// Releases the old reference before it takes the new one, but not before there is memory for the
// wrapper. `target` and `source` are the same wrapper only in a self-assignment, which changes
// nothing.
template<typename T>
void s_shareAssign(RefCounted<T>*& target, RefCounted<T> const* source) {
    if (target == source) {
        return;
    }
    auto fresh = std::make_unique<RefCounted<T>>(nullptr, false);
    delete target;
    target = nullptr;
    fresh->share(source->impl());
    target = fresh.release();
}

} // namespace Quorvane
