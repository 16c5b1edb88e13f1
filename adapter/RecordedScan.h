// SPDX-License-Identifier: Apache-2.0
//
// Scans that leave a record. Safe to call from many threads on one engine.
#pragma once

#include "adapter/DeepHeaderAdapter.h"

#include <vector>

namespace Quorvane {

// Judges one message. A scan that fails throws nothing: the record says why, and how far it got.
ScanRecord recordScan(DeepHeaderAdapter& engine, DeepHeaderQuery& query, RecordDepth depth);

// Judges a message of which only the attributes are known.
ScanRecord recordJudgement(DeepHeaderAdapter& engine, AttributeVector const& attributes,
                           DeepHeaderSettings const& settings, RecordDepth depth);

// The fewest attributes that would have had to differ for another verdict, each answer tried on the
// engine: the best one for spam and the best one for ham, if there is one and `attributes` do not
// have that verdict already.
std::vector<Alternative> findAlternatives(DeepHeaderAdapter& engine,
                                          DeepHeaderSettings const& settings,
                                          AttributeVector const& attributes);

// Every single change that takes a verdict of spam away. REQUIRES: `attributes` are judged spam.
SingleChanges findSingleChanges(DeepHeaderAdapter& engine, DeepHeaderSettings const& settings,
                                AttributeVector const& attributes);

} // namespace Quorvane
