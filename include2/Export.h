// SPDX-License-Identifier: Apache-2.0
//
// The visibility mark of both shared libraries. Everything is compiled hidden; a class or function
// that programs outside the library may call carries QV_API.
#pragma once

// Marks what a library exports.
#define QV_API __attribute__((visibility("default")))
