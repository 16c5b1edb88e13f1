// SPDX-License-Identifier: Apache-2.0
#include "apps/story/FailedLookups.h"

#include <algorithm>

namespace Quorvane {

bool hasFailed(RecordedLookup const& lookup) {
    return lookup.result == LookupResult::failed || lookup.result == LookupResult::late;
}

bool hasFailedLookup(ScanRecord const& record) {
    return std::any_of(record.lookups.begin(), record.lookups.end(), hasFailed);
}

} // namespace Quorvane
