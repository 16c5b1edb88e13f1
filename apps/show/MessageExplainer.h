// SPDX-License-Identifier: Apache-2.0
//
// MessageExplainer: whole messages to records with the working record of the scan, for a page that
// cannot read messages itself. One object a process, since it sets up the scanning host; explain
// may be called from many threads.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/input/Interrupt.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Show {

class MessageExplainer {
  public:
    // `facts`: what is known of every message. A SettingsError.
    MessageExplainer(HostSettings const& settings, DeepHeaderEngine engine, MessageFacts facts);

    // The JSON record of one message, as `qvscan --format json --explain` writes it. A RuleError
    // when there is no header field in it.
    std::string explain(std::string const& source, std::string_view message) const;

    // The records of all messages of the paths, in order. A RuleError for what cannot be read.
    std::vector<std::string> explainFiles(std::vector<std::string> const& paths,
                                          Interrupt& interrupt) const;

  private:
    std::shared_ptr<ScanHost const> m_host;
    MessageFacts m_facts;
};

} // namespace Quorvane::Show
