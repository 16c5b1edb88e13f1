// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TextRecord.h"

#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <string_view>

namespace Quorvane {

namespace {

// Columns fit what is usual; longer text pushes the rest of its line.
constexpr std::size_t verdictWidth = 4;
constexpr std::size_t confidenceWidth = 8;
constexpr std::size_t nodeWidth = 5;
constexpr std::size_t addressWidth = 31; // two IPv4 addresses

std::string s_padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string_view s_colour(std::string_view verdict) {
    if (verdict == "spam") {
        return "\x1B[31m";
    }
    return verdict == "ham" ? "\x1B[32m" : "\x1B[2m";
}

std::string s_verdict(RecordedVerdict const& answer, bool colour) {
    std::string const verdict = verdictName(answer);
    auto const padded = s_padded(verdict, verdictWidth);
    return colour ? std::string(s_colour(verdict)) + padded + "\x1B[0m" : padded;
}

std::string s_confidence(RecordedVerdict const& answer) {
    return answer.node == 0 ? "-" : numberText(answer.confidence);
}

std::string s_orDash(std::string const& text) {
    return text.empty() ? "-" : text;
}

} // namespace

std::string textRecord(std::string const& source, ScanRecord const& record, bool colour) {
    auto const& answer = record.verdict;
    auto const node = answer.node == 0 ? "-" : std::to_string(answer.node);
    auto line = s_verdict(answer, colour) + "  " + s_padded(s_confidence(answer), confidenceWidth) +
                "  " + s_padded(node, nodeWidth) + "  " +
                s_padded(s_orDash(toPrintable(answer.ips)), addressWidth) + "  " +
                toPrintable(source);
    if (record.failure) {
        line += "  (" + toPrintable(*record.failure) + ")";
    }
    return line + "\n";
}

} // namespace Quorvane
