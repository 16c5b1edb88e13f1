// SPDX-License-Identifier: Apache-2.0
//
// Standard input, output and error of a program that was started without some of them
// ("program <&-"). The next file that it opens would take their number, and be read as its input
// or be written over with its messages.
#pragma once

namespace Quorvane {

// Opens what is closed on something that fails: input that cannot be read, output that cannot be
// written. Messages to a closed standard error are lost. Call it first in main.
void openClosedDescriptors();

} // namespace Quorvane
