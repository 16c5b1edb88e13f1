// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a settings file of the mail filter, which has all settings there are.
// What is wrong is a SettingsError that begins with the file; what was read is shown as a file that
// is read the same.
#include "apps/milter/MilterTable.h"
#include "apps/settings/SettingSources.h"
#include "MemoryFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

// As --show-config prints them, without the comments that say where each value came from.
std::string s_shown(SettingsSection const& section) {
    std::string text;
    for (auto const& facts : section.facts()) {
        text.append(facts.m_name).append("=");
        for (auto const& value : section.texts(facts.m_name)) {
            text += value + '\n';
        }
    }
    return text;
}

struct Read {
    std::string m_shown;
    std::string m_toml;
};

// Empty when the file is wrong.
std::optional<Read> s_read(std::string_view bytes) {
    static MemoryFile const s_file;
    auto const path = s_file.hold(bytes);
    SettingsStore host;
    Milter::MilterStore milter;
    SettingsSection* const sections[] = {&host, &milter};
    try {
        loadSettingsFile(path, "qvmilter", sections);
    } catch (SettingsError const& error) {
        check(std::string_view(error.what()).starts_with(path), "an error begins with its file");
        return std::nullopt;
    }
    return Read{s_shown(host) + s_shown(milter), host.asToml() + milter.asToml()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const read = s_read({reinterpret_cast<char const*>(data), size});
    if (read) {
        auto const again = s_read(read->m_toml);
        check(again && again->m_shown == read->m_shown,
              "settings that are shown are read the same");
    }
    return 0;
}
