// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseReader.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/TomlSettings.h"
#include "apps/workshop/CaseExpectation.h"
#include "apps/workshop/VectorText.h"
#include "platform/HeaderReader.h"
#include "rules/language/Nearest.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

namespace Quorvane::Workshop {

namespace {

class CaseReader {
  public:
    CaseReader(toml::table const& table, std::string const& path, SettingsStore const& base)
        : m_table(table), m_path(path), m_settings(base) {}

    RuleCase read(std::vector<std::string> const& zoneLines) {
        m_case.m_line = m_table.source().begin.line;
        m_zoneLines = zoneLines;
        for (auto const& [name, node] : m_table) {
            readKey(name, node);
        }
        checkWhole();
        m_case.m_settings = m_settings.values();
        m_case.m_facts = m_facts.values();
        m_case.m_settings.m_zoneLines = m_zoneLines;
        return std::move(m_case);
    }

  private:
    struct Key {
        std::string_view m_name;
        void (CaseReader::*m_read)(toml::node const& node);
    };
    static constexpr std::size_t ownKeys = 5;
    static std::array<Key, ownKeys> const s_keys;

    [[noreturn]] void fail(toml::node const& node, std::string const& what) const {
        failCase(m_path, node, what);
    }

    void readKey(toml::key const& name, toml::node const& node) {
        auto const key = std::find_if(s_keys.begin(), s_keys.end(),
                                      [&](Key const& one) { return one.m_name == name.str(); });
        if (key != s_keys.end()) {
            (this->*key->m_read)(node);
        } else if (readExpectation(name.str(), node, m_path, m_case.m_expected)) {
            return;
        } else if (isCaseSetting(name.str())) {
            setFromToml(m_settings, name.str(), node, m_path);
        } else if (m_facts.find(name.str()) != nullptr) {
            setFromToml(m_facts, name.str(), node, m_path);
            m_fact = &node;
        } else {
            throw SettingsError(tomlPlace(m_path, name.source().begin) + unknownKey(name.str()));
        }
    }

    std::string unknownKey(std::string_view name) const {
        std::vector<std::string_view> names;
        names.reserve(s_keys.size());
        for (auto const& key : s_keys) {
            names.push_back(key.m_name);
        }
        names.insert(names.end(), expectationKeys.begin(), expectationKeys.end());
        for (auto const& facts : m_facts.facts()) {
            names.push_back(facts.m_name);
        }
        addCaseSettings(names);
        return "a case has no key \"" + std::string(name) + '"' + Rules::didYouMean(name, names);
    }

    void readName(toml::node const& node) {
        m_case.m_name = caseText(m_path, "name", node);
        if (m_case.m_name.empty() || m_case.m_name.find('\n') != std::string::npos) {
            fail(node, "a name is one line that says what the case is about");
        }
    }

    void readVector(toml::node const& node) {
        auto const* const table = node.as_table();
        if (table == nullptr) {
            fail(node, "a vector is a table, as in vector.first_helo_dynamic = \"yes\"");
        }
        NamedVector vector;
        for (auto const& [name, value] : *table) {
            auto const* const word = value.as_string();
            auto const text = word != nullptr ? std::optional(word->get())
                                              : tomlScalar(SettingKind::integer, value);
            try {
                vector.set(name.str(), text.value_or(""));
            } catch (Rules::RuleError const& error) {
                fail(value, error.what());
            }
        }
        m_case.m_vector = vector.vector();
        noteInput(node);
    }

    void readMessage(toml::node const& node) {
        takeMessage(caseText(m_path, "message", node), node);
    }

    void readFile(toml::node const& node) {
        auto const name = caseText(m_path, "file", node);
        takeMessage(Rules::readFile(std::filesystem::path(m_path).parent_path() / name), node);
    }

    void takeMessage(std::string text, toml::node const& node) {
        if (HeaderReader::read(text).headers().empty()) {
            fail(node, "no message: it has no header field");
        }
        m_case.m_headers = std::move(text);
        noteInput(node);
    }

    void noteInput(toml::node const& node) {
        if (m_hasInput) {
            fail(node, "a case has one of vector, message and file");
        }
        m_hasInput = true;
    }

    void readDns(toml::node const& node) { m_zoneLines = readZoneLines(m_path, node); }

    void checkWhole() const {
        if (m_case.m_name.empty()) {
            fail(m_table, "the case has no name; say what it is about");
        }
        if (!m_hasInput) {
            fail(m_table, "the case has nothing to judge; give it a vector, a message or a file");
        }
        if (m_case.m_expected.m_verdict.empty()) {
            fail(m_table, "the case expects nothing; give it a verdict: spam, ham or none");
        }
        if (m_case.m_vector && m_fact != nullptr) {
            fail(*m_fact, "this tells about a message, and the case has a vector; leave it out");
        }
    }

    toml::table const& m_table;
    std::string const& m_path;
    SettingsStore m_settings;
    FactsStore m_facts;
    std::vector<std::string> m_zoneLines;
    toml::node const* m_fact = nullptr; // one of the facts that were given
    bool m_hasInput = false;
    RuleCase m_case;
};

std::array<CaseReader::Key, CaseReader::ownKeys> const CaseReader::s_keys{{
    {"name", &CaseReader::readName},
    {"vector", &CaseReader::readVector},
    {"message", &CaseReader::readMessage},
    {"file", &CaseReader::readFile},
    {"dns", &CaseReader::readDns},
}};

} // namespace

// Where rules and look-ups come from is the test's own business.
bool isCaseSetting(std::string_view name) {
    return name != "root" && name != "jobs" && name != "dns" &&
           SettingsStore().find(name) != nullptr;
}

void addCaseSettings(std::vector<std::string_view>& names) {
    for (auto const& row : settingRows()) {
        if (isCaseSetting(row.m_facts.m_name)) {
            names.push_back(row.m_facts.m_name);
        }
    }
}

std::vector<std::string> readZoneLines(std::string const& path, toml::node const& node) {
    std::vector<std::string> lines;
    auto const* const array = node.as_array();
    if (array == nullptr) {
        failCase(path, node,
                 "dns is a list of zone-file lines, as in [\"mail.example. A 192.0.2.1\"]");
    }
    for (auto const& line : *array) {
        lines.push_back(caseText(path, "each line of dns", line));
    }
    return lines;
}

RuleCase readCase(toml::table const& table, std::string const& path, SettingsStore const& base,
                  std::vector<std::string> const& zoneLines) {
    return CaseReader(table, path, base).read(zoneLines);
}

} // namespace Quorvane::Workshop
