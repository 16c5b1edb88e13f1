// SPDX-License-Identifier: Apache-2.0
#include "platform/EmailAddress.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <malloc.h>
#include <ostream>
#include <pthread.h>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Quorvane::Testing {

namespace {

struct Case {
    std::string m_text;
    char const* m_localPart; // null: no address
    char const* m_domain;
    char const* m_origin;
};

std::ostream& operator<<(std::ostream& out, Case const& row) {
    return out << row.m_origin << ": " << ::testing::PrintToString(row.m_text);
}

// The same whether lenient or not.
Case const s_wellFormed[] = {
    {"user@host.example", "user", "host.example", "bare"},
    {"<user@host.example>", "user", "host.example", "in angle brackets"},
    {"User@HOST.Example", "User", "HOST.Example", "letter case is kept"},
    {"A. Name <user@host.example>", "user", "host.example", "display name with a dot"},
    {"\"Name, A.\" <user@host.example>", "user", "host.example", "quoted display name"},
    {"\"admin@bank.example\" <evil@spam.example>", "evil", "spam.example",
     "display name that looks like an address"},
    {"=?utf-8?q?J=C3=B6rg?= <user@host.example>", "user", "host.example", "encoded word"},
    {"=?x-no-such-charset?b?/////w==?= <user@host.example>", "user", "host.example",
     "encoded word in an unknown character set"},
    {"J\xf6rg <user@host.example>", "user", "host.example", "Latin-1 display name"},
    {"user (comment) @ (another) host.example (third)", "user", "host.example", "comments"},
    {"(a(nested)comment) user@host.example", "user", "host.example", "nested comment"},
    {"user . name @ host . example", "user.name", "host.example", "obsolete blanks around dots"},
    {"<@relay1.example,@relay2.example:user@host.example>", "user", "host.example", "route"},
    {"\"a@b\"@host.example", "a@b", "host.example", "quoted local part with @"},
    {"\"a b\\\"c\\\\d\"@host.example", "a b\"c\\d", "host.example", "quoted pairs"},
    {"\"a\r\n b\"@host.example", "a b", "host.example", "folded quoted local part"},
    {"\"a\".b@host.example", "a.b", "host.example", "partly quoted local part"},
    {"\"\"@host.example", "", "host.example", "empty local part"},
    {"user@[192.0.2.1]", "user", "[192.0.2.1]", "IPv4 literal keeps its brackets"},
    {"user@[IPv6:2001:DB8::1]", "user", "[IPv6:2001:DB8::1]", "IPv6 literal"},
    {"user@host.example.", "user", "host.example", "trailing dot"},
    {"one@host.example, two@other.example", "one", "host.example", "the first of two"},
    {"friends: one@host.example, two@other.example;", "one", "host.example", "group members count"},
    {"nobody:;, one@host.example", "one", "host.example", "an empty group does not count"},
    {"Doe, John <john@host.example>", "john", "host.example", "unquoted comma in the name"},
    {"foo, user@host.example", "user", "host.example", "what has no @ does not count"},
    {"first last@host, user@host.example", "user", "host.example", "broken one before"},
    {"user@host.example, first last@host", "user", "host.example", "broken one after"},
    {"\r\n user@host.example\r\n (folded)", "user", "host.example", "folded value"},
    {"user@xn--mller-kva.example", "user", "xn--mller-kva.example", "A-label stays as it is"},
    {"user@XN--Mller-kva.example", "user", "XN--Mller-kva.example", "A-label, letter case"},
    {"{|}~`^@xn--mller-kva.example", "{|}~`^", "xn--mller-kva.example",
     "rare bytes beside an A-label"},
    {"=?utf-8?q?x?=@host.example", "=?utf-8?q?x?=", "host.example",
     "an encoded word is no local part in disguise"},
    {"m\xc3\xbcller@m\xc3\xbcller.example", "m\xc3\xbcller", "m\xc3\xbcller.example", "UTF-8"},
    {"a!b%c@host.example", "a!b%c", "host.example", "old routing marks"},
    {"user@host", "user", "host", "domain without a dot"},
    {"\"a@b@c\"@host.example", "a@b@c", "host.example", "quoted local part with two @"},
    {"a(x@y)@(x@y)host.example (x@y)", "a", "host.example", "comments with @"},
    {"\"x@y@z\" <user@host.example>", "user", "host.example", "quoted display name with two @"},
    {"user@host.example two@other.example", "user", "host.example", "a blank for a comma"},
    {"user@host.example(note)two@other.example", "user", "host.example", "a comment for a comma"},
    {"one@two@three, user@host.example", "user", "host.example", "one with two @ before"},
    {"friends: one@two@three, user@host.example;", "user", "host.example",
     "group member with two @ before"},
    {"<one@two@three>, <user@host.example>", "user", "host.example",
     "one with two @ in angle brackets before"},
    {"one@[<two@three], user@host.example", "user", "host.example",
     "one with an @ in a literal before"},
    {"user@host.example, one@two@three", "user", "host.example", "one with two @ after"},
    {"user@[IPv6:2001:db8::1], one@two@three", "user", "[IPv6:2001:db8::1]",
     "a literal's colons end no address"},
};

Case const s_noAddress[] = {
    {"", nullptr, nullptr, "empty value"},
    {" \t\r\n ", nullptr, nullptr, "blanks"},
    {"<>", nullptr, nullptr, "empty path of a bounce"},
    {" <>\r\n", nullptr, nullptr, "empty path with blanks"},
    {"MAILER-DAEMON", nullptr, nullptr, "name alone"},
    {"<MAILER-DAEMON>", nullptr, nullptr, "name in angle brackets"},
    {"first last@host", nullptr, nullptr, "two words before the @"},
    {"undisclosed-recipients:;", nullptr, nullptr, "group without members"},
    {"undisclosed-recipients: ;", nullptr, nullptr, "group without members"},
    {"user@", nullptr, nullptr, "no domain"},
    {"<user@>", nullptr, nullptr, "no domain in angle brackets"},
    {"@host.example", nullptr, nullptr, "no local part"},
    {"<@host.example>", nullptr, nullptr, "no local part in angle brackets"},
    {"<@relay.example:>", nullptr, nullptr, "route to nowhere"},
    {"user@host..example", nullptr, nullptr, "empty label"},
    {"user@.host", nullptr, nullptr, "leading dot"},
    {"user@[192.0.2.1", nullptr, nullptr, "open literal"},
    {"(user@host.example", nullptr, nullptr, "open comment"},
    {"\"user@host.example\"", nullptr, nullptr, "all quoted: a local part alone"},
    {"=?utf-8?q?user=40host.example?=", nullptr, nullptr, "address hidden in an encoded word"},
    {"user at host dot example", nullptr, nullptr, "in words"},
    {"j\xf6rg@host.example", nullptr, nullptr, "Latin-1 local part"},
    {std::string("user@host.example\0", 18), nullptr, nullptr, "NUL at the end"},
    {std::string("user@host\0.example", 18), nullptr, nullptr, "NUL inside"},
    {std::string("user@host.example, a\0", 21), nullptr, nullptr, "NUL in a later one of a list"},
    {std::string("\0user@host.example", 18), nullptr, nullptr, "NUL in front"},
    {"{}|~^`$#%*&!'/_@xn--mller-kva.example", nullptr, nullptr, "no byte left to hide with"},
    {"a@b@c.example", nullptr, nullptr, "two @"},
    {"<a@b@c.example>", nullptr, nullptr, "two @ in angle brackets"},
    {"\"x\" <a@b@c>", nullptr, nullptr, "two @ after a quoted name"},
    {"x <a@b@c>", nullptr, nullptr, "two @ after a name"},
    {"x@y.example <a@b@c>", nullptr, nullptr, "two @ after a name that looks like an address"},
    {"a@b@c@d.example", nullptr, nullptr, "three @"},
    {"a@@b.example", nullptr, nullptr, "two @ side by side"},
    {"a@b @ c.example", nullptr, nullptr, "two @, blanks around one"},
    {"a@b\r\n @c.example", nullptr, nullptr, "two @, folded"},
    {"a@b . c@d.example", nullptr, nullptr, "two @, blanks around a dot"},
    {"a@b (x) @c.example", nullptr, nullptr, "two @, a comment between"},
    {"\"a\"@b@c.example", nullptr, nullptr, "two @ after a quoted local part"},
    {"a@[192.0.2.1]@c.example", nullptr, nullptr, "two @, one after a literal"},
    {"a@[IPv6:2001:db8::1]@c.example", nullptr, nullptr, "two @, one after an IPv6 literal"},
    {"a@[ 192.0.2.1 ]@c.example", nullptr, nullptr, "two @, one after a literal with blanks"},
    {"a@[b@c.example]", nullptr, nullptr, "two @, one in a literal"},
    {"a@[<b@c.example]", nullptr, nullptr, "two @, one behind a bracket in a literal"},
    {"a@[b,@c;@d]", nullptr, nullptr, "two @, both behind separators in a literal"},
    {"a@[\"]@b.example\"]", nullptr, nullptr, "two @, one after a quotation mark in a literal"},
    {"@[,-@[@]", nullptr, nullptr, "two @, seen where an error ends"},
    {"a@b\"@c.example", nullptr, nullptr, "two @, a stray quotation mark between"},
    {"a@b\\@c.example", nullptr, nullptr, "two @, a stray backslash between"},
    {"a@b)@c.example", nullptr, nullptr, "two @, a stray parenthesis between"},
    {"<@relay.example:a@b@c.example>", nullptr, nullptr, "two @ after a route"},
    {"friends: a@b@c.example;", nullptr, nullptr, "group whose member has two @"},
    {"\"Name <a@b@c.example>", nullptr, nullptr, "two @ after an open quotation mark"},
    {"<a@b@c.example", nullptr, nullptr, "two @ after an open bracket"},
    {"a@b@c.example>", nullptr, nullptr, "two @ before a stray bracket"},
    {"a@b@c.example <user@host.example>", nullptr, nullptr, "two @ in an unquoted name"},
    {"a@xn--b@xn--c.example", nullptr, nullptr, "two @ and A-labels"},
};

// An address only when lenient.
Case const s_deviations[] = {
    {"admin@bank.com <evil@spam.ru>", "evil", "spam.ru", "unquoted address as display name"},
    {"<user@host.example", "user", "host.example", "bracket left open"},
    {"user@host.example>", "user", "host.example", "bracket never opened"},
    {"<<user@host.example>>", "user", "host.example", "doubled brackets"},
    {"\"Name <user@host.example>", "user", "host.example", "quotation mark left open"},
    {"a@b.example (x) <user@host.example>", "user", "host.example", "address and comment as name"},
};

void s_expect(Case const& row, EmailAddress const& address) {
    EXPECT_EQ(row.m_localPart == nullptr, address.isNull());
    EXPECT_EQ(row.m_localPart == nullptr ? "" : row.m_localPart, address.localPart());
    EXPECT_EQ(row.m_domain == nullptr ? "" : row.m_domain, address.domain());
}

EmailAddress s_parse(std::string const& text) {
    return EmailAddress::rfc5322Parse(text, true);
}

std::string s_repeated(std::string const& piece, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += piece;
    }
    return text;
}

// Pieces of addresses in any order.
rc::Gen<std::string> s_pieces() {
    auto const pieces = rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "user", "host.example", "@", "user@host.example", "@xn--mller-kva.example", "<", ">", ",",
        ";", ":", "(", ")", "\"", "\\", ".", " ", "\r\n ", "[192.0.2.1]", "[", "]",
        "=?utf-8?q?x?=", "xn--mller-kva", "\xc3\xbc", "\xff", "{"));
    return rc::gen::map(pieces, [](std::vector<std::string> const& all) {
        std::string text;
        for (auto const& piece : all) {
            text += piece;
        }
        return text;
    });
}

// Few orders of pieces make an address, so every other text starts with one.
rc::Gen<std::string> s_nearlyAnAddress() {
    auto const start = rc::gen::element<std::string>(
        "", "", "", "user@host.example ", "user@(note) host . example", "<user@[192.0.2.1]");
    return rc::gen::map(rc::gen::pair(start, s_pieces()),
                        [](auto const& both) { return both.first + both.second; });
}

} // namespace

TEST(EmailAddress, DefaultConstructedIsNull) {
    s_expect({"", nullptr, nullptr, ""}, EmailAddress());
}

TEST(EmailAddress, ReadsTheFirstAddressOfWellFormedText) {
    for (auto const& row : s_wellFormed) {
        SCOPED_TRACE(row);
        s_expect(row, EmailAddress::rfc5322Parse(row.m_text, true));
        s_expect(row, EmailAddress::rfc5322Parse(row.m_text, false));
    }
}

TEST(EmailAddress, TextWithoutAnAddressIsNull) {
    for (auto const& row : s_noAddress) {
        SCOPED_TRACE(row);
        s_expect(row, EmailAddress::rfc5322Parse(row.m_text, true));
        s_expect(row, EmailAddress::rfc5322Parse(row.m_text, false));
    }
}

TEST(EmailAddress, LenientAcceptsTheCommonDeviations) {
    for (auto const& row : s_deviations) {
        SCOPED_TRACE(row);
        s_expect(row, EmailAddress::rfc5322Parse(row.m_text, true));
        EXPECT_TRUE(EmailAddress::rfc5322Parse(row.m_text, false).isNull());
    }
}

TEST(EmailAddress, StrictlyABracketOutOfPlaceEndsTheListThatCounts) {
    for (auto const* const text : {"a@b.example>",
                                   "a@b.example<",
                                   "Name <a@b.example",
                                   "a@b.example <c@d.example>",
                                   "<a@b.example,c@d.example>",
                                   "<a@b.example;>",
                                   "<a@b.example:25>",
                                   "<<a@b.example>>",
                                   "(a@b.example",
                                   "\"Name <a@b.example>",
                                   "Name [x] <a@b.example>",
                                   "a@[192.0.2.1",
                                   "<@r a@b.example>",
                                   "<@r,s:a@b.example>",
                                   "<@r@s:a@b.example>",
                                   "<@:a@b.example>",
                                   "<@r (:a@b.example>",
                                   "<@r.example,",
                                   "<@[r:a@b.example>",
                                   "<@r s:a@b.example>"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(EmailAddress::rfc5322Parse(text, false).isNull());
        auto const behindAnother = std::string("first@host.example, ") + text;
        EXPECT_EQ("host.example", EmailAddress::rfc5322Parse(behindAnother, false).domain());
    }
}

TEST(EmailAddress, StrictlyBracketsInPlaceAreFine) {
    for (auto const* const text :
         {"\"<:,;[(\\\"\" <a@host.example>", "(<\\)[,>) a@host.example",
          "<@r.example, @s.example : a@host.example>", "a@host.example (]>)",
          "J. Doe <@r.example,@s.example:a@host.example>", "), <@r,,@s (,) , :a@host.example>",
          "<@[192.0.2.1] (x) ,\r\n @ s:a@host.example>", "(,) <(,) a@host.example (,)>",
          "Name (x) <a@host.example> (y)", "g: <a@host.example>, <b@c>;"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ("host.example", EmailAddress::rfc5322Parse(text, false).domain());
    }
    EXPECT_EQ("[192.0.2.1]", EmailAddress::rfc5322Parse("a@ (x) [192.0.2.1]", false).domain());
    EXPECT_EQ("<,>", EmailAddress::rfc5322Parse("\"<,>\"@host.example", false).localPart());
    EXPECT_EQ("<,>", EmailAddress::rfc5322Parse("x <\"<,>\"@host.example>", false).localPart());
}

TEST(EmailAddress, TheFirstAddressOfALongListCounts) {
    auto const list = s_repeated("\"Doe, J.\" <someone@host.example> (Doe),\r\n ", 100000);
    EXPECT_EQ("host.example", s_parse(list).domain());
    EXPECT_EQ("first.example", s_parse("a@first.example, " + list).domain());
}

TEST(EmailAddress, AnAddressBehindTheConsideredLengthIsNotSeen) {
    EXPECT_EQ("host.example", s_parse(std::string(1500, ' ') + "a@host.example").domain());
    EXPECT_TRUE(s_parse(std::string(3000, ' ') + "a@host.example").isNull());
}

TEST(EmailAddress, SeparatorsBeyondTheConsideredNumberEndTheListThatCounts) {
    EXPECT_EQ("host.example", s_parse(s_repeated("x, ", 45) + "a@host.example").domain());
    EXPECT_TRUE(s_parse(s_repeated("x, ", 51) + "a@host.example, b@c.example").isNull());
    auto const eightColons = std::string("\"a:b:c:d:e\" <u@[IPv6:2001:db8:0:1:2:3:4:5]>");
    EXPECT_EQ("[IPv6:2001:db8:0:1:2:3:4:5]", s_parse(eightColons).domain());
}

TEST(EmailAddress, AnAddressIsNeverCutInTwo) {
    for (std::size_t blanks = 2020; blanks < 2050; ++blanks) {
        auto const address = s_parse(std::string(blanks, ' ') + "a@host.example.org, b@c.example");
        EXPECT_TRUE(address.isNull() || address.domain() == "host.example.org") << blanks;
    }
}

TEST(EmailAddress, OneEndlessWordIsNull) {
    EXPECT_TRUE(s_parse("a@" + std::string(100000, 'h')).isNull());
}

// Each of these once took a parser down: by depth of recursion or by quadratic time.
TEST(EmailAddress, HostileTextIsHarmless) {
    for (auto const* const start : {"", "<", "\"", "(", "a@", "a <", "a:", "=?utf-8?q?"}) {
        for (auto const* const piece :
             {"(", "a:", "a:;", "<", "@", "a,", "a ", "\"", "\\", "a@[", "=?utf-8?q?x?= ", ".",
              "@a,", "\r\n ", "xn--a.", ";", "\xff", "a:b,"}) {
            SCOPED_TRACE(std::string(start) + " and many " + piece);
            // Some begin with an address: "a@a".
            EXPECT_LE(s_parse(start + s_repeated(piece, 100000)).domain().size(), 20U);
        }
    }
}

#if !defined(__SANITIZE_ADDRESS__) &&                                                              \
    !defined(__SANITIZE_THREAD__) // they look for leaks themselves
void s_expectNoLeak(std::string const& text, bool lenient) {
    constexpr std::size_t calls = 1000;
    EmailAddress::rfc5322Parse(text, lenient); // with what is made once
    auto const before = ::mallinfo2().uordblks;
    for (std::size_t i = 0; i < calls; ++i) {
        EmailAddress::rfc5322Parse(text, lenient);
    }
    EXPECT_LT(::mallinfo2().uordblks, before + calls * 16) << text;
}

TEST(EmailAddress, AnAddressBeforeACommentWithoutAnEndLeaksNothing) {
    for (auto const* const text :
         {"m@[](", "m@[192.0.2.1] (a (b)", "x@y.example, m@[\"]\r\n (", "g: m@[1](a\\)",
          "(c) m@[(](x, y@z.example", "m@[][](", "m@[1][2] [3] (", "\",m@[](", "a\",m@[](\"",
          "a(,m@[]()(", "\"a\"b\",m@[](\""}) {
        s_expectNoLeak(text, true);
    }
}

// After an error GMime goes on behind the next comma, wherever that stands.
TEST(EmailAddress, StrictlyABracketInQuotedTextLeaksNothing) {
    for (auto const* const text :
         {"'\",a>\"", "'\",J. Doe>\"a, b@c; (\"", "\"\"\",7>\"", "\"a, b@c; (\"\",a@b<\"",
          "'\"a,\n <c@d>, E <f@g>a>\"", "@ (,a>)", "@[,a>]"}) {
        s_expectNoLeak(text, false);
    }
}

TEST(EmailAddress, StrictlyACommaInAngleBracketsLeaksNothing) {
    for (auto const* const text : {// no route
                                   "<a@b,c@d>", ")<@b,g>", "x)<@b,g>", "a@b, )<@b,g>", "g:)<@b,g>;",
                                   "(a).<@b,g>", "a=<@b.e!a\",m@[]!:\"!)!,le>",
                                   // in a route
                                   ")<@a,:a>", ".<@a,:a>", "]<@a,:a>", "\"\";<@a,:a>",
                                   // in a literal or quoted text
                                   ".<a@[,a@[b]>", ")<a@[,a@[b]>", ".<\"x,a.\"@[\"@[b]>"}) {
        s_expectNoLeak(text, false);
    }
}
#endif

TEST(EmailAddress, ACommentWithoutAnEndAfterALiteralCountsAsNoComment) {
    EXPECT_EQ(EmailAddress::rfc5322Parse("x@y.example, m@[192.0.2.1](", true).domain(),
              "y.example");
    EXPECT_EQ(EmailAddress::rfc5322Parse("m@[192.0.2.1](a", true).domain(), "[192.0.2.1]");
    EXPECT_EQ(EmailAddress::rfc5322Parse("\"[a] (\" <m@y.example>", true).domain(), "y.example");
    EXPECT_EQ(EmailAddress::rfc5322Parse("\"[a](\"@y.example", true).localPart(), "[a](");
    EXPECT_EQ(EmailAddress::rfc5322Parse("m@[192.0.2.1] (a)", true).domain(), "[192.0.2.1]");
    EXPECT_EQ(EmailAddress::rfc5322Parse("m@[192.0.2.1] (a\\) (\\()", true).domain(),
              "[192.0.2.1]");
}

// A host's scanning threads may have small stacks.
TEST(EmailAddress, HostileTextNeedsLittleStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 256 * std::size_t{1024}));
    auto const parse = [](void*) -> void* {
        EXPECT_TRUE(s_parse(s_repeated("a:", 100000)).isNull());
        EXPECT_TRUE(s_parse(s_repeated("(", 100000)).isNull());
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(0, pthread_create(&thread, &attributes, parse, nullptr));
    EXPECT_EQ(0, pthread_join(thread, nullptr));
    pthread_attr_destroy(&attributes);
}

TEST(EmailAddress, ManyThreadsMayParseAtOnce) {
    auto const parseAll = [] {
        for (int round = 0; round < 20; ++round) {
            for (auto const& row : s_wellFormed) {
                s_expect(row, EmailAddress::rfc5322Parse(row.m_text, round % 2 == 0));
            }
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(parseAll);
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

// In a process of its own, where nothing was parsed before.
TEST(EmailAddressDeathTest, ParsingLeavesAloneWhatTheHostDoesAboutBrokenPipes) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const parseAndBreak = [] {
        std::signal(SIGPIPE, SIG_DFL);
        s_parse("user@host.example");
        std::raise(SIGPIPE);
        std::exit(0);
    };
    EXPECT_EXIT(parseAndBreak(), testing::KilledBySignal(SIGPIPE), "");
}

// Blanks and comments may part the labels of a domain, and a literal loses its blanks.
RC_GTEST_PROP(EmailAddress, EveryLabelOfTheDomainStandsInTheText, ()) {
    auto const text = *s_nearlyAnAddress();
    auto const address = s_parse(text);
    RC_ASSERT(address.isNull() == address.domain().empty());
    bool const isLiteral = !address.isNull() && address.domain().front() == '[';
    RC_CLASSIFY(!address.isNull() && !isLiteral, "a domain of labels");
    std::istringstream labels(isLiteral ? std::string() : address.domain());
    for (std::string label; std::getline(labels, label, '.');) {
        RC_ASSERT(text.find(label) != std::string::npos);
    }
}

// Without quotes, comments and routes an address stands in its text as it is read, but for blanks.
RC_GTEST_PROP(EmailAddress, NoSecondAtFollowsWhatIsRead, ()) {
    auto text = *rc::gen::element<std::string>("", "a@b", "a@b ", "<a@b.c", "d <a@[f]", "d, a@b.");
    auto const pieces = rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "a", "b.c", "d", "@", "@", "@e", "<", ">", ",", ";", ":", " ", ".", "\\", ")", "[f]", "]"));
    for (auto const& piece : *pieces) {
        text += piece;
    }
    auto const address = EmailAddress::rfc5322Parse(text, *rc::gen::arbitrary<bool>());
    RC_CLASSIFY(!address.isNull(), "an address");
    if (address.isNull()) {
        return;
    }
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    auto const read = address.localPart() + '@' + address.domain();
    RC_CLASSIFY(std::count(text.begin(), text.end(), '@') > 1, "and more than one @");
    bool isAlone = false;
    for (auto at = text.find(read); at != std::string::npos; at = text.find(read, at + 1)) {
        auto const end = at + read.size();
        isAlone = isAlone || end == text.size() || text[end] != '@';
    }
    RC_ASSERT(isAlone);
}

// With a comment, which is none of the forms that are read without the mail library.
RC_GTEST_PROP(EmailAddress, APlainAddressIsReadAsTheMailLibraryReadsIt, ()) {
    auto const piece = rc::gen::element<std::string>(
        "a", "B", "7", ".", "-", "_", "+", "=", "'", " ", "xn--", "--", "John Doe", "J. Doe",
        "\"a, b@c; (\"", "\"", "<", ">", "@", "@", "a@b.example", "<a.b@c-d.example>", ",", "\r\n ",
        "a@b.example,\n <c@d.example>, E <f@g.example>", "<>", "undisclosed-recipients:;", ":;",
        ";");
    std::string text;
    for (auto const& each : *rc::gen::container<std::vector<std::string>>(piece)) {
        text += each;
    }
    bool const lenient = *rc::gen::arbitrary<bool>();
    auto const address = EmailAddress::rfc5322Parse(text, lenient);
    auto const read = EmailAddress::rfc5322Parse(text + " (c)", lenient);
    RC_CLASSIFY(!address.isNull(), "an address");
    RC_ASSERT(address.localPart() == read.localPart());
    RC_ASSERT(address.domain() == read.domain());
}

TEST(EmailAddress, PlainAddressesAreReadInAllTheirForms) {
    for (std::string const text :
         {"a.b+c=d_e-f@g-h.example", " <a.b+c=d_e-f@g-h.example>\r\n",
          "J O'Neill-7 <a.b+c=d_e-f@g-h.example>", "\"x (y), @z; <\" <a.b+c=d_e-f@g-h.example>"}) {
        for (bool const lenient : {true, false}) {
            auto const address = EmailAddress::rfc5322Parse(text, lenient);
            EXPECT_EQ(address.localPart(), "a.b+c=d_e-f") << text;
            EXPECT_EQ(address.domain(), "g-h.example") << text;
        }
    }
}

RC_GTEST_PROP(EmailAddress, AnAtomAddressReadsBackInEveryDress, ()) {
    auto const atom = rc::gen::nonEmpty(rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("abcXYZ0189!#$%&'*+-/=^_`{|}~"))));
    auto const local = *atom;
    auto const domain = *atom + "." + *atom;
    for (auto const* const dress :
         {"L@D", "<L@D>", "Name <L@D>", "group: L@D, x@y.example;", "L (c) @ (c) D (d)"}) {
        std::string text;
        for (char const c : std::string_view(dress)) {
            text += c == 'L' ? local : c == 'D' ? domain : std::string(1, c);
        }
        auto const address = s_parse(text);
        RC_ASSERT(address.localPart() == local);
        RC_ASSERT(address.domain() == domain);
    }
}

} // namespace Quorvane::Testing
