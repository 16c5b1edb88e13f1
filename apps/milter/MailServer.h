// SPDX-License-Identifier: Apache-2.0
//
// MailServer: what a session asks of the mail server at the other end, and the changes that it
// makes to a message. The callbacks implement it on libmilter; macros are known only while a
// callback runs, changes are taken at the end of a message only.
#pragma once

#include <string>

namespace Quorvane::Milter {

// What a callback answers.
enum class Reply { carryOn, accept, tempfail, reject, discard };

class MailServer {
  public:
    virtual ~MailServer() = default;

    // "{client_name}", "i". Empty when the mail server does not say.
    virtual std::string macro(char const* name) = 0;

    // A header above all others.
    virtual bool addHeader(std::string const& name, std::string const& value) = 0;
    // `index` counts the headers of that name from 1.
    virtual bool removeHeader(std::string const& name, int index) = 0;
    virtual bool quarantine(std::string const& reason) = 0;
    // The reply that a reject or tempfail gives: 550 "5.7.1" with a text of one line.
    virtual bool replyText(char const* code, char const* enhancedCode, std::string const& text) = 0;
};

} // namespace Quorvane::Milter
