// SPDX-License-Identifier: Apache-2.0
//
// The page of a rule set: one HTML document with the tree, the elite rules, a search, and a place
// to try messages. Pure functions.
#pragma once

#include "apps/show/Drawings.h"
#include "platform/DeepHeaderSettings.h"

#include <string>
#include <vector>

namespace Quorvane::Show {

struct PageExtras {
    // What messages are judged with at first; the reader of the page may change them.
    DeepHeaderSettings m_settings;
    // Messages to choose from: JSON records with the working record in them, as qvscan writes them.
    std::vector<std::string> m_records;
    // The page may ask where it came from about whole messages.
    bool m_isServed = false;
};

std::string htmlDrawing(Drawing const& drawing, PageExtras const& extras);

// The parts of it. The tree and the table are HTML; the data, for the scripts, is JSON.
std::string pageTree(Drawing const& drawing);
std::string pageEliteTable(Drawing const& drawing);
std::string pageData(ShownRules const& rules, PageExtras const& extras);

} // namespace Quorvane::Show
