// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Table.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Page;

namespace {

TEST(PageTable, ScrollsInABoxThatTheKeyboardReaches) {
    Table table("A & B", {{"Name"}, {"Count", true}});
    table.row({"<bdi>x</bdi>", "12"});
    EXPECT_EQ(table.html(),
              "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"A &amp; B\">\n"
              "<table>\n<thead><tr><th scope=\"col\">Name</th>"
              "<th scope=\"col\" class=\"number\">Count</th></tr></thead>\n<tbody>\n"
              "<tr><th scope=\"row\"><bdi>x</bdi></th><td class=\"number\">12</td></tr>\n"
              "</tbody>\n</table>\n</div>\n");
}

} // namespace
} // namespace Quorvane::Testing
