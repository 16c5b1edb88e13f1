// SPDX-License-Identifier: Apache-2.0
//
// Scans that leave a record. Safe to call from many threads on one engine.
#pragma once

#include "adapter/DeepHeaderAdapter.h"

namespace Quorvane {

// Judges one message. A scan that fails throws nothing: the record says why, and how far it came.
ScanRecord recordScan(DeepHeaderAdapter& engine, DeepHeaderQuery& query, RecordDepth depth);

// Judges a message of which only the attributes are known.
ScanRecord recordJudgement(DeepHeaderAdapter& engine, AttributeVector const& attributes,
                           DeepHeaderSettings const& settings, RecordDepth depth);

} // namespace Quorvane
