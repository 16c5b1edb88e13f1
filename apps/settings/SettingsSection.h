// SPDX-License-Identifier: Apache-2.0
//
// SettingsSection: the settings of one table of the settings file, the values in force and where
// each came from. Later sources replace earlier ones: defaults, settings file, command line. A list
// is replaced as a whole. Used at start, on one thread.
//
// A program has the section that all share (SettingsTable.h), whose keys are at the top of the
// file. It may have a table [its-name] there, with its own rows and record.
#pragma once

#include "apps/settings/SettingRow.h"

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

class SettingsSection {
  public:
    virtual ~SettingsSection() = default;

    // The name of the table; empty: the top of the file.
    std::string_view title() const { return m_title; }
    std::vector<SettingFacts> const& facts() const { return m_facts; }
    // Null when there is none.
    SettingFacts const* find(std::string_view name) const;

    // Replaces a value. `name` is in the section. Throws a SettingsError ("name: what is wrong");
    // a list may then have some of its elements.
    void set(std::string_view name, SettingTexts const& texts, std::string const& origin);
    // Its two steps: restore the default or the empty list, then add one text.
    void reset(std::string_view name, std::string const& origin);
    void add(std::string_view name, std::string const& text);

    SettingTexts texts(std::string_view name) const;
    // "default", "command line", or file and line.
    std::string origin(std::string_view name) const;

    // The section as a settings file, each value with its origin in a comment.
    std::string asToml() const;

  protected:
    SettingsSection(std::string_view title, std::vector<SettingFacts> facts);
    SettingsSection(SettingsSection const&) = default;
    SettingsSection& operator=(SettingsSection const&) = default;

  private:
    std::size_t rowOf(std::string_view name) const;
    // These take the index of the row.
    virtual void assignRow(std::size_t row, std::string const& text) = 0;
    virtual SettingTexts showRow(std::size_t row) const = 0;
    virtual void resetRow(std::size_t row) = 0;

    std::string_view m_title;
    std::vector<SettingFacts> m_facts;
    std::map<std::string, std::string, std::less<>> m_origins;
};

template<typename Record>
std::vector<SettingFacts> factsOf(std::span<SettingRow<Record> const> rows) {
    std::vector<SettingFacts> facts;
    for (auto const& row : rows) {
        facts.push_back(row.m_facts);
    }
    return facts;
}

template<typename Record>
class Settings : public SettingsSection {
  public:
    using Rows = std::span<SettingRow<Record> const>;

    // `title` and `rows` are constants.
    Settings(std::string_view title, Rows rows)
        : SettingsSection(title, factsOf(rows)), m_rows(rows) {}

    Record const& values() const { return m_values; }

  private:
    void assignRow(std::size_t row, std::string const& text) override {
        if (m_rows[row].m_check != nullptr) {
            m_rows[row].m_check(text);
        }
        m_rows[row].m_assign(m_values, text);
    }
    SettingTexts showRow(std::size_t row) const override { return m_rows[row].m_show(m_values); }
    void resetRow(std::size_t row) override { m_rows[row].m_reset(m_values); }

    Rows m_rows;
    Record m_values;
};

} // namespace Quorvane
