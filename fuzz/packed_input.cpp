// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as an input of the programs: a message, an mbox, packed or in an archive.
// Each item is a message with a header field or a problem with words for it, and the positions of
// the items move forward.
#include "apps/input/HeaderCheck.h"
#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "Check.h"
#include "support/MemorySource.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

// A small archive can hold any number of files; the first ones say enough.
constexpr int mostItems = 50;

void s_checkItem(InputItem const& item, std::uint64_t before, std::size_t size) {
    check(item.m_source.starts_with("input"), "an item names its input");
    check(item.m_problem.empty() == (item.m_exitStatus == 0), "a problem has an exit status");
    check(!item.m_problem.empty() || hasHeaderField(item.m_headers),
          "what is judged has a header field");
    check(before <= item.m_position && item.m_position <= size, "positions move forward");
}

std::optional<OpenInput> s_open(std::string_view bytes) {
    try {
        return openPacked(
            std::make_unique<Testing::MemorySource>(std::string(bytes), bytes.size()));
    } catch (InputError const&) {
        return std::nullopt; // a damaged start
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Interrupt const s_interrupt;
    auto opened = s_open({reinterpret_cast<char const*>(data), size});
    if (!opened) {
        return 0;
    }
    bool const isArchive = opened->m_archive != nullptr; // perhaps one of folders alone
    Inputs inputs("input", std::move(*opened), s_interrupt, HeaderLimits());
    InputItem item;
    std::uint64_t position = 0;
    int count = 0;
    while (count < mostItems && inputs.next(item)) {
        s_checkItem(item, position, size);
        position = item.m_position;
        ++count;
    }
    check(count > 0 || isArchive, "only an archive can be without messages");
    return 0;
}
