// SPDX-License-Identifier: Apache-2.0
//
// A mail server that says what its table says, and notes the changes that a session makes.
#pragma once

#include "apps/milter/MailServer.h"

#include <map>
#include <vector>

namespace Quorvane::Testing {

class FakeMailServer : public Milter::MailServer {
  public:
    explicit FakeMailServer(std::map<std::string, std::string> macros)
        : m_macros(std::move(macros)) {}

    std::string macro(char const* name) override {
        auto const found = m_macros.find(name);
        return found == m_macros.end() ? std::string() : found->second;
    }
    bool addHeader(std::string const& name, std::string const& value) override {
        m_changes.push_back("add " + name + ": " + value);
        return true;
    }
    bool removeHeader(std::string const& name, int index) override {
        m_changes.push_back("remove " + name + ' ' + std::to_string(index));
        return true;
    }
    bool quarantine(std::string const& reason) override {
        m_changes.push_back("quarantine " + reason);
        return true;
    }
    bool replyText(char const* code, char const* enhancedCode, std::string const& text) override {
        m_changes.push_back(std::string(code) + ' ' + enhancedCode + ' ' + text);
        return true;
    }

    std::vector<std::string> const& changes() const { return m_changes; }

  private:
    std::map<std::string, std::string> m_macros;
    std::vector<std::string> m_changes;
};

} // namespace Quorvane::Testing
