// SPDX-License-Identifier: Apache-2.0
//
// The fewest attributes that would have had to differ for another verdict. Each answer is tried on
// the engine. Safe to call from many threads.
#pragma once

#include "adapter/DeepHeaderAdapter.h"

#include <vector>

namespace Quorvane {

// The best one for spam and the best one for ham, as far as there is one and `attributes` do not
// have that verdict already.
std::vector<Alternative> findAlternatives(DeepHeaderAdapter& engine,
                                          DeepHeaderSettings const& settings,
                                          AttributeVector const& attributes);

} // namespace Quorvane
