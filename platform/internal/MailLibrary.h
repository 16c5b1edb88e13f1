// SPDX-License-Identifier: Apache-2.0
//
// The start of GMime, the library that reads values of header fields.
#pragma once

namespace Quorvane {

// Before any of its functions is called. The first call starts it, the others do nothing. Safe to
// call from many threads.
void startMailLibrary();

} // namespace Quorvane
