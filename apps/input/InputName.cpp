// SPDX-License-Identifier: Apache-2.0
#include "apps/input/InputName.h"

#include <charconv>
#include <filesystem>
#include <optional>

namespace Quorvane {

namespace {

namespace fs = std::filesystem;

// A file, a folder, or ARCHIVE/MEMBER; empty when there is no such thing.
std::optional<InputName> s_existing(std::string const& text) {
    std::error_code error;
    if (text == "-" || fs::exists(text, error)) {
        return InputName{text, {}, 0};
    }
    // Of an absolute path the first slash stands before everything.
    for (auto slash = text.find('/', 1); slash != std::string::npos;
         slash = text.find('/', slash + 1)) {
        auto const path = text.substr(0, slash);
        auto const status = fs::status(path, error);
        bool const isFile = path == "-" || (fs::exists(status) && !fs::is_directory(status));
        if (isFile && slash + 1 < text.size()) {
            return InputName{path, text.substr(slash + 1), 0};
        }
    }
    return std::nullopt;
}

// "FILE:N".
std::optional<InputName> s_numbered(std::string const& text) {
    auto const colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        return std::nullopt;
    }
    std::size_t number = 0;
    auto const* const end = text.data() + text.size();
    auto const read = std::from_chars(text.data() + colon + 1, end, number);
    bool const isNumber = read.ec == std::errc() && read.ptr == end && number > 0;
    auto named = isNumber ? s_existing(text.substr(0, colon)) : std::nullopt;
    std::error_code error;
    if (!named || fs::is_directory(named->m_path, error)) {
        return std::nullopt;
    }
    named->m_number = number;
    return named;
}

} // namespace

std::string InputName::source() const {
    return m_member.empty() ? m_path : m_path + "/" + m_member;
}

// A member's name may end in a number, too: then the archive decides, which is not read here.
InputName inputName(std::string const& text) {
    std::error_code error;
    if (text != "-" && !fs::exists(text, error)) {
        if (auto const named = s_numbered(text)) {
            return *named;
        }
    }
    return s_existing(text).value_or(InputName{text, {}, 0});
}

} // namespace Quorvane
