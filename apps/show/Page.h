// SPDX-License-Identifier: Apache-2.0
//
// The page of a rule set: one HTML document with the tree, the elite rules, a search, and messages
// with their explanations. The page judges nothing: in a file it shows what was judged when it was
// written; a served page asks the program that serves it. Pure functions.
#pragma once

#include "apps/settings/HostSettings.h"
#include "apps/show/Drawings.h"

#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Show {

// A message to choose in a page.
struct PageMessage {
    std::string m_source;
    std::string m_headers; // the header section, for a served page
    std::string m_record;  // for a page in a file: the JSON record with the whole explanation
};

struct PageExtras {
    std::vector<PageMessage> m_messages;
    // Given for a served page: what the program judges with at first. The reader of the page may
    // change some.
    std::optional<HostSettings> m_served;
};

std::string htmlDrawing(Drawing const& drawing, PageExtras const& extras);

// A name and its sentence, as HTML; nothing without a name.
std::string pageName(std::optional<Rules::RuleName> const& name);

// The parts of it. The tree and the table are HTML, and so is the place for messages; the data, for
// the scripts, is JSON.
std::string pageTree(Drawing const& drawing);
std::string pageEliteTable(Drawing const& drawing);
std::string pageMessages(PageExtras const& extras);
std::string pageData(PageExtras const& extras);

} // namespace Quorvane::Show
