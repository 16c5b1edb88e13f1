// SPDX-License-Identifier: Apache-2.0
#include "platform/HeaderText.h"

#include "platform/ForkBarrier.h"
#include "platform/internal/MailLibrary.h"

#include <algorithm>
#include <gmime/gmime.h>
#include <memory>

namespace Quorvane {

namespace {

// Visible ASCII without the start of an encoded word: what nearly all fields are. The mail library
// would give it back as it is.
bool s_isPlain(std::string_view value) {
    return value.find("=?") == std::string_view::npos &&
           std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

} // namespace

std::string headerText(std::string_view value) {
    if (s_isPlain(value)) {
        return std::string(value);
    }
    startMailLibrary();
    ForkBarrier const barrier;
    std::string text(value);
    std::replace(text.begin(), text.end(), '\0', ' '); // would end the text
    std::unique_ptr<char, void (*)(void*)> const decoded(
        g_mime_utils_header_decode_text(nullptr, text.c_str()), g_free);
    return decoded.get();
}

} // namespace Quorvane
