// SPDX-License-Identifier: Apache-2.0
//
// ReceivedAccess: a look at a Received record that leaves it as it is. The accessors of MsgReceived
// may parse; who displays a finished scan must not.
#pragma once

#include "MsgReceived.h"
#include "received/MsgReceivedImpl.h"

namespace Quorvane {

class ReceivedAccess {
  public:
    // The fields as they stand, valid as long as a handle to the record lives. Null on a handle
    // without a record of its kind.
    static ReceivedFields const* fields(MsgReceived const& hop) {
        auto const* const record = MsgReceivedImpl::of(hop.impl());
        return record == nullptr ? nullptr : &record->fields();
    }
};

} // namespace Quorvane
