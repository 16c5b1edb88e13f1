// SPDX-License-Identifier: Apache-2.0
#include "include2/QvaneRefcounted.h"

namespace Quorvane {

RefImpl::~RefImpl() = default;

} // namespace Quorvane
