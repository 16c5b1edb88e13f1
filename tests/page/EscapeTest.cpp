// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Quorvane::Testing {

using namespace Page;

namespace {

TEST(PageEscape, TextCannotBecomeMarkup) {
    EXPECT_EQ(text("a < b & \"c\" > 'd'"), "a &lt; b &amp; &quot;c&quot; &gt; &apos;d&apos;");
    EXPECT_EQ(text("</title><script>alert(1)</script>"),
              "&lt;/title&gt;&lt;script&gt;alert(1)&lt;/script&gt;");
    EXPECT_EQ(text("&lt;"), "&amp;lt;");
    EXPECT_EQ(text(""), "");
}

TEST(PageEscape, BytesOfAnyKindBecomeVisibleText) {
    EXPECT_EQ(text("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(text("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(text("\xC0\x80"), "\xC3\x80\\x80");
    EXPECT_EQ(text(std::string_view("a\0b\nc\x1B", 6)), "a\\x00b\\x0Ac\\x1B");
}

TEST(PageEscape, IsolatedTextStandsInAnElementOfItsOwn) {
    std::string const turning{'\xE2', '\x80', '\xAE'};
    EXPECT_EQ(isolated('<' + turning), "<bdi>&lt;" + turning + "</bdi>");
}

TEST(PageEscape, DataCannotEndItsElement) {
    nlohmann::json const hostile = {{"</script><!--", "<script>&]]>\xE2\x80\xA8\xE2\x80\xA9"}};
    auto const element = dataElement("tree", hostile.dump());
    std::string const head = R"(<script type="application/json" id="tree">)";
    std::string const end = "</script>\n";
    ASSERT_EQ(element.substr(0, head.size()), head);
    ASSERT_EQ(element.substr(element.size() - end.size()), end);
    auto const content = element.substr(head.size(), element.size() - head.size() - end.size());
    EXPECT_EQ(content.find('<'), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(content), hostile);
}

} // namespace
} // namespace Quorvane::Testing
