// SPDX-License-Identifier: Apache-2.0
//
// The mark in pages and pictures of qvrules, by which it knows its own when it is to replace one.
#pragma once

namespace Quorvane {

inline constexpr char madeBy[] = "Made by qvrules";

} // namespace Quorvane
