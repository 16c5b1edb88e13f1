// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/VerdictCsv.h"

#include "apps/headers/ReceivedDate.h"
#include "apps/story/ResultText.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "rules/vectors/VectorCsv.h"

#include <boost/algorithm/string/join.hpp>
#include <vector>

namespace Quorvane {

namespace {

// What spreadsheets take for the start of a formula; some of them skip blanks before it.
bool s_isFormula(std::string const& text) {
    auto const start = text.find_first_not_of(' ');
    return start != std::string::npos &&
           std::string_view("=+-@").find(text[start]) != std::string_view::npos;
}

std::string s_text(std::string const& bytes) {
    auto const text = toPrintable(bytes);
    return Rules::csvField(s_isFormula(text) ? "'" + text : text);
}

std::string s_number(bool isKnown, std::string const& text) {
    return isKnown ? text : "";
}

std::string s_line(std::vector<std::string> const& cells) {
    return boost::algorithm::join(cells, ",") + "\n";
}

} // namespace

std::string verdictCsvHeader() {
    return "source,verdict,confidence,node,ruleName,relay,relayName,senderDomain,received,date,"
           "messageId,from,subject,error\n";
}

std::string verdictCsvLine(ListedResult const& result) {
    auto const& [source, message, received, record, names] = result;
    auto const& verdict = record.verdict;
    bool const isDecided = verdict.node != 0;
    return s_line({s_text(source), verdictName(verdict),
                   s_number(isDecided, exactNumberText(verdict.confidence)),
                   s_number(isDecided, std::to_string(verdict.node)),
                   s_text(nameText(deciderName(names, verdict))), s_text(relayAddress(record)),
                   s_text(relayName(record)), s_text(record.headerFrom.domain()),
                   received ? dateText(*received) : "", s_text(message.m_date.value_or("")),
                   s_text(message.m_messageId.value_or("")), s_text(message.m_from.value_or("")),
                   s_text(message.m_subject.value_or("")), s_text(record.failure.value_or(""))});
}

} // namespace Quorvane
