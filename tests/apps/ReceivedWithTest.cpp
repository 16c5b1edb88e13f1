// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/ReceivedWith.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

TEST(ReceivedWith, KnowsHowMailServersWriteProtocolAndEncryption) {
    struct {
        char const* m_origin;
        char const* m_value;
        char const* m_protocol;
        char const* m_tls;
    } const cases[] = {
        {"Postfix",
         "from a (a [192.0.2.1])\n\t(using TLSv1.3 with cipher TLS_AES_256_GCM_SHA384 (256/256 "
         "bits)\n\t key-exchange X25519)\n\tby mx (Postfix) with ESMTPS id 4Q; Mon, 1 Jan 2024 "
         "10:00:00 +0000",
         "ESMTPS", "TLS 1.3"},
        {"Postfix, not encrypted", "from a by mx (Postfix) with ESMTP id 4Q\n\tfor <b@c>; x",
         "ESMTP", ""},
        {"Exim", "from a by mx with esmtps (TLS1.3) tls TLS_AES_256_GCM_SHA384\n\t(Exim 4) id 1",
         "esmtps", "TLS 1.3"},
        {"Exim, old", "from a by mx with esmtpsa (TLSv1:AES256-SHA:256)", "esmtpsa", "TLS 1"},
        {"Sendmail", "from a by mx (8.17/8.17) with ESMTPS id x\n\t(version=TLSv1.2 cipher=E)",
         "ESMTPS", "TLS 1.2"},
        {"a large provider", "from a by mx with ESMTPS id x\n\t(version=TLS1_3 cipher=T bits=1/2)",
         "ESMTPS", "TLS 1.3"},
        {"a groupware server",
         "from a by b with Microsoft SMTP Server (version=TLS1_2,\n cipher=T) id 15.1; x",
         "Microsoft SMTP Server", "TLS 1.2"},
        {"only the protocol tells", "from a by b with UTF8SMTPSA id 3", "UTF8SMTPSA", "TLS"},
        {"webmail", "from [192.0.2.1] by web with HTTP; x", "HTTP", ""},
        {"without the clause", "by mx id 4; x", "", ""},
        {"in a comment only", "from a (with love) by mx (x with y); z", "", ""},
        {"a nested comment", "from a (b (c) with d) by mx with LMTP", "LMTP", ""},
        {"a comment without end", "from a (by mx with ESMTPS (version=TLS1_3", "", "TLS 1.3"},
        {"the date is no part of it", "by mx; with ESMTP (TLS1.3", "", ""},
        {"a host name", "from a (tls1.2.example.com [192.0.2.1]) by mx with SMTP", "SMTP", ""},
        {"a host name, too", "from a (xtls1.3) by mx with SMTP", "SMTP", ""},
        {"a helo", "from tlsv1.3 (helo tls1) by mx with SMTP", "SMTP", ""},
        {"a word without limits", "with aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "",
         ""},
        {"nothing", "", "", ""},
    };
    for (auto const& row : cases) {
        auto const with = receivedWith(row.m_value);
        EXPECT_EQ(with.m_protocol, row.m_protocol) << row.m_origin;
        EXPECT_EQ(with.m_tls, row.m_tls) << row.m_origin;
    }
}

} // namespace

} // namespace Quorvane::Testing
