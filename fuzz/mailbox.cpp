// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a message or an mbox. It does not matter in which pieces the bytes come;
// header sections are parts of the input, and copies hold what they should.
#include "apps/input/MessageReader.h"
#include "Check.h"
#include "support/MemorySource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

constexpr std::size_t allAtOnce = std::size_t{1} << 30U;

std::vector<HeaderSection> s_read(std::string_view bytes, std::size_t mostAtOnce, bool isCopied) {
    ReaderOptions options;
    if (isCopied) {
        options.m_copies = "/tmp";
    }
    MessageReader reader(std::make_unique<Testing::MemorySource>(std::string(bytes), mostAtOnce),
                         options);
    std::vector<HeaderSection> sections;
    HeaderSection section;
    while (reader.next(section)) {
        sections.push_back(section);
    }
    check(reader.position() <= bytes.size(), "no more is read than there is");
    return sections;
}

bool s_isSame(HeaderSection const& left, HeaderSection const& right) {
    return left.m_number == right.m_number && left.m_text == right.m_text &&
           left.m_problem == right.m_problem;
}

void s_checkSame(std::vector<HeaderSection> const& left, std::vector<HeaderSection> const& right) {
    check(std::equal(left.begin(), left.end(), right.begin(), right.end(), s_isSame),
          "the same bytes are the same messages");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const bytes(reinterpret_cast<char const*>(data), size);
    auto const sections = s_read(bytes, allAtOnce, false);
    bool const isMbox = bytes.starts_with("From ");
    check(isMbox || sections.size() == 1, "what is no mbox is one message");
    std::size_t total = 0;
    for (std::size_t i = 0; i < sections.size(); ++i) {
        check(sections[i].m_number == (isMbox ? i + 1 : 0), "the messages of an mbox are numbered");
        total += sections[i].m_text.size();
    }
    check(total <= size, "each byte is taken once");
    s_checkSame(sections, s_read(bytes, 1, false));
    s_checkSame(sections, s_read(bytes, 7, true));
    return 0;
}
