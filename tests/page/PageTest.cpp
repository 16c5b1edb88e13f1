// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace Quorvane::Testing {

using namespace Page;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// What stands in the only element `tag`.
std::string s_contentOf(std::string const& page, std::string const& tag) {
    auto const begin = page.find('<' + tag + '>') + tag.size() + 2;
    return page.substr(begin, page.find("</" + tag + '>') - begin);
}

Document s_document() {
    Document document;
    document.m_title = "Rules & <b>";
    document.m_style = "p { margin: 0; }\n";
    document.m_script = "document.title = 'run';\n";
    document.m_body = "<p>text</p>\n";
    return document;
}

// The values of FIPS 180-2, appendix B, and of the empty text.
TEST(Page, HashesAsPoliciesWantIt) {
    EXPECT_EQ(contentHash("abc"), "sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
    EXPECT_EQ(contentHash({}), "sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU=");
}

TEST(Page, PolicyKnowsItsOwnStyleAndScriptOnly) {
    auto const page = html(s_document());
    EXPECT_THAT(page,
                HasSubstr("content=\"default-src 'none'; base-uri 'none'; form-action 'none'; "
                          "style-src '" +
                          contentHash(s_contentOf(page, "style")) + "'; script-src '" +
                          contentHash(s_contentOf(page, "script")) + "'\">"));
    EXPECT_EQ(s_contentOf(page, "script"), s_document().m_script);
    EXPECT_EQ(s_contentOf(page, "style"), std::string(theme()) + "p { margin: 0; }\n");
}

TEST(Page, WithoutScriptNoneMayRun) {
    auto document = s_document();
    document.m_script = {};
    auto const page = html(document);
    EXPECT_THAT(page, HasSubstr("script-src 'none'"));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
}

TEST(Page, TitleIsText) {
    EXPECT_THAT(html(s_document()), HasSubstr("<title>Rules &amp; &lt;b&gt;</title>"));
}

TEST(Page, RefusesFilesThatWouldEndTheirElementOrHashOtherwise) {
    for (std::string_view const script : {std::string_view("a </script> b"),
                                          std::string_view("a\r\nb"), std::string_view("\0", 1)}) {
        auto document = s_document();
        document.m_script = script;
        EXPECT_THROW(html(document), std::invalid_argument);
    }
    auto document = s_document();
    document.m_style = "</style>";
    EXPECT_THROW(html(document), std::invalid_argument);
}

} // namespace
} // namespace Quorvane::Testing
