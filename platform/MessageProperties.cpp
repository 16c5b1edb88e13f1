// SPDX-License-Identifier: Apache-2.0
#include "platform/MessageProperties.h"

namespace Quorvane {

template class Ref<MessageProperties>;

MessageProperties::~MessageProperties() = default;

RefMessageProperties::RefMessageProperties(bool create)
    : Ref(create ? new RefCounted<MessageProperties> : nullptr) {}

RefMessageProperties::~RefMessageProperties() = default;

} // namespace Quorvane
