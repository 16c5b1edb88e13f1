// SPDX-License-Identifier: Apache-2.0
#include "Trails.h"

#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "platform/HeaderReader.h"
#include "platform/Strings.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <utility>

namespace Quorvane::Bench {

namespace {

std::string s_number(std::mt19937& random, unsigned int limit) {
    return std::to_string(random() % limit);
}

enum class Client { publicAddress, privateAddress, none };

// In the shares of 34,570 real messages: the newest hop, and older ones.
Client s_client(std::mt19937& random, bool isNewest) {
    auto const percent = random() % 100;
    if (percent < (isNewest ? 84 : 38)) {
        return Client::publicAddress;
    }
    return percent < (isNewest ? 92 : 66) ? Client::privateAddress : Client::none;
}

std::string s_ip(std::mt19937& random, Client client) {
    return (client == Client::publicAddress ? "203.0." : "10.0.") + s_number(random, 256) + '.' +
           s_number(random, 256);
}

std::string s_host(std::mt19937& random) {
    static char const* const kinds[] = {"mail", "mx", "smtp-out", "relay", "host-203-0-113", "web"};
    return std::string(kinds[random() % 6]) + s_number(random, 100) + ".site" +
           s_number(random, 50) + ".example";
}

// One Received value in the shape of Postfix, Sendmail, Exim, qmail or Exchange.
std::string s_received(std::mt19937& random, std::string const& by, Client client) {
    auto const host = s_host(random);
    auto const ip = s_ip(random, client);
    auto const date = ";\n\tMon, 1 Jan 2024 10:00:0" + s_number(random, 10) + " +0000 (UTC)";
    auto const id = "4S" + s_number(random, 100000000);
    if (client == Client::none) {
        return "(from someone@localhost)\n\tby " + by + " (8.15.2/8.15.2/Submit)\n\tid " + id +
               "; for other@recipient.example" + date;
    }
    switch (random() % 5) {
    case 0:
        return "from " + host + " (" + host + " [" + ip + "])\n\tby " + by +
               " (Postfix) with ESMTPS id " + id + "\n\tfor <someone@recipient.example>" + date;
    case 1:
        return "from " + host + " (" + s_host(random) + " [" + ip + "])\n\tby " + by +
               " (8.15.2/8.15.2) with ESMTP id " + id +
               "\n\t(version=TLSv1.2 cipher=ECDHE-RSA-AES256-GCM-SHA384 bits=256 verify=NO)" + date;
    case 2:
        return "from [" + ip + "] (helo=" + host + ")\n\tby " + by +
               " with esmtps (TLS1.2) (Exim 4.92)\n\tid " + id + date;
    case 3:
        return "from unknown (HELO " + host + ") (" + ip + ")\n  by " + by +
               " with SMTP; 1 Jan 2024 10:00:00 -0000";
    default:
        return "from " + host + " (" + ip + ") by\r\n " + by +
               " (203.0.113.9) with Microsoft SMTP Server (TLS) id 15.1.2507.6" + date;
    }
}

// The header sections of all messages below `folder`.
std::vector<std::string> s_sections(std::string const& folder) {
    Interrupt const interrupt;
    Inputs inputs({folder}, interrupt, {});
    std::vector<std::string> sections;
    for (InputItem item; inputs.next(item);) {
        if (item.m_problem.empty()) { // else a file that is no mail, such as a README
            sections.push_back(std::move(item.m_headers));
        }
    }
    return sections;
}

void s_add(Trails& trails, std::string const& section) {
    auto const container = HeaderReader::read(section);
    for (auto const& header : container.headers()) {
        if (isSameNoCase(header.type(), "received")) {
            trails.m_received.push_back(header.value());
        }
    }
    trails.m_blocks.push_back(section);
}

} // namespace

Trails makeTrails(std::size_t messages) {
    std::mt19937 random(20240101); // the same trails at every run
    Trails trails;
    for (std::size_t i = 0; i < messages; ++i) {
        std::string block = "Return-Path: <bounce@sender" + s_number(random, 90) + ".example>\n";
        auto const hops = 1 + random() % 6;
        for (unsigned int hop = 0; hop < hops; ++hop) {
            auto const client = s_client(random, hop == 0);
            trails.m_received.push_back(s_received(random, s_host(random), client));
            block += "Received: " + trails.m_received.back() + '\n';
        }
        block += "Message-ID: <" + s_number(random, 1000000000) + "@mail.sender" +
                 s_number(random, 90) + ".example>\nDate: Mon, 1 Jan 2024 10:00:00 +0000\n" +
                 "From: \"Some One\" <someone@sender" + s_number(random, 90) +
                 ".example>\nTo: other@recipient.example\nSubject: About this and that\n\n";
        trails.m_blocks.push_back(block);
    }
    return trails;
}

Trails readTrails(std::string const& folder, std::size_t messages) {
    auto const sections = s_sections(folder);
    if (sections.empty()) {
        throw std::runtime_error(folder + ": no messages");
    }
    Trails trails;
    auto const count = std::min(messages, sections.size());
    for (std::size_t i = 0; i < count; ++i) {
        s_add(trails, sections[i * sections.size() / count]);
    }
    return trails;
}

Trails benchmarkTrails(std::size_t messages) {
    auto const* const folder = std::getenv("QV_BENCH_MAIL");
    return folder == nullptr ? makeTrails(messages) : readTrails(folder, messages);
}

} // namespace Quorvane::Bench
