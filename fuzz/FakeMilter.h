// SPDX-License-Identifier: Apache-2.0
//
// Stands in for libmilter: it keeps the callbacks that the filter registers, and what it is told of
// one connection. One mail server, one thread.
#pragma once

#include <libmilter/mfapi.h>
#include <map>
#include <string>
#include <vector>

// One connection; libmilter leaves the type open.
struct smfi_str {
    void* m_session = nullptr;
    std::map<std::string, std::string> m_macros;
    // Changes to the message; libmilter takes them at its end only.
    bool m_isAtEnd = false;
    std::vector<std::string> m_addedNames;
    std::vector<std::string> m_addedValues;
    int m_removed = 0;
    bool m_isTooEarly = false; // a change came when libmilter takes none
};

namespace Quorvane {

// What the filter registered.
smfiDesc const& registeredFilter();

} // namespace Quorvane
