// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Extraction.h"

#include "apps/commandline/ProgramError.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Quorvane {

namespace {

constexpr std::size_t positionDigits = 8;
constexpr std::size_t longestName = 100;
constexpr char suffix[] = ".eml";

bool s_isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-' || c == '_';
}

} // namespace

Extraction::Extraction(std::filesystem::path folder) : m_folder(std::move(folder)) {
    std::error_code error;
    std::filesystem::create_directory(m_folder, error);
    if (!std::filesystem::is_directory(m_folder)) {
        throw ProgramError(ExitStatus::cannotWrite,
                           m_folder.string() + ": cannot be made: " +
                               (error ? error.message() : "it is no folder"));
    }
}

bool Extraction::write(MessageCopy const& copy, std::uint64_t position, std::string const& source) {
    auto const path = m_folder / extractedName(position, source);
    if (int const error = copy.writeTo(path)) {
        m_error = path.string() + ": cannot be written: " + std::strerror(error);
        return false;
    }
    return true;
}

// The end of a source tells more than its start. What a shell or another program might take for
// more than a name is replaced.
std::string extractedName(std::uint64_t position, std::string const& source) {
    auto number = std::to_string(position);
    number.insert(0, positionDigits - std::min(positionDigits, number.size()), '0');
    auto name = source.substr(source.rfind('/') + 1);
    name.erase(0, name.size() - std::min(name.size(), longestName));
    std::replace(name.begin(), name.end(), ':', '-');
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !s_isPlain(c); }, '_');
    return number + "-" + name + (name.ends_with(suffix) ? "" : suffix);
}

} // namespace Quorvane
