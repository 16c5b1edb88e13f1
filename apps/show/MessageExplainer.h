// SPDX-License-Identifier: Apache-2.0
//
// MessageExplainer: turns messages and attribute vectors into JSON records with the whole
// explanation, for a page that cannot judge by itself. One object for each process, since it sets
// up the scanning host; explain and answer may be called from many threads.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/input/Interrupt.h"
#include "apps/show/Page.h"
#include "apps/show/PageServer.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Show {

// `host`, judging with the settings that the address of a request names after "?":
// "spam-threshold=0.9&walk-to-leaf=0". Only settings that say how rules judge can be named. A
// SettingsError for others, for values that they do not take and for malformed text.
HostSettings askedSettings(HostSettings host, std::string_view query);

class MessageExplainer {
  public:
    // `facts`: what is known of every message. A SettingsError.
    MessageExplainer(HostSettings const& settings, LoadedRules rules, MessageFacts facts);

    // The record of one message, as `qvscan --format json --explain` writes it. A RuleError when
    // there is no header field in it.
    std::string explain(std::string const& source, std::string_view message) const;

    // The record of what a page asks about, judged with the settings that it asks for. A
    // SettingsError for these, a RuleError for what is neither message nor vector.
    std::string answer(PageQuestion const& question) const;

  private:
    std::string explain(ScanHost const& host, std::string const& source,
                        std::string_view message) const;

    std::shared_ptr<ScanHost const> m_host;
    MessageFacts m_facts;
};

// Passes on all messages of the paths, in order, without records. A RuleError for what cannot be
// read; Interrupted.
void readMessages(std::vector<std::string> const& paths, HeaderLimits const& limits,
                  Interrupt& interrupt, std::function<void(PageMessage message)> const& take);

} // namespace Quorvane::Show
