// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/ColumnChoice.h"

#include "apps/commandline/ProgramError.h"
#include "rules/language/Nearest.h"

#include <algorithm>
#include <array>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/split.hpp>

namespace Quorvane {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, 10> names{"verdict", "rule",      "relay",     "sender",
                                                 "date",    "source",    "addresses", "from",
                                                 "subject", "message-id"};
static_assert(names.size() == static_cast<std::size_t>(Column::messageId) + 1);

std::vector<Column> s_usual() {
    return {Column::verdict, Column::rule, Column::relay,
            Column::sender,  Column::date, Column::source};
}

Column s_column(std::string const& name) {
    auto const* const found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        std::vector<std::string> const all(names.begin(), names.end());
        throw UsageError("--columns: \"" + name + "\" is not one of " +
                         boost::algorithm::join(all, ",") +
                         Rules::didYouMean(name, {names.begin(), names.end()}));
    }
    return static_cast<Column>(found - names.begin());
}

} // namespace

OptionRow columnsRow() {
    return {"columns", "LIST",
            "columns of the text, with commas between them: verdict, rule, relay, sender, date, "
            "source (default: these), addresses, from, subject, message-id"};
}

std::vector<Column> chosenColumns(CommandLine const& line) {
    if (!line.has("columns")) {
        return s_usual();
    }
    std::vector<std::string> words;
    boost::algorithm::split(words, line.text("columns"), [](char c) { return c == ','; });
    std::vector<Column> columns;
    std::transform(words.begin(), words.end(), std::back_inserter(columns), s_column);
    return columns;
}

} // namespace Quorvane
