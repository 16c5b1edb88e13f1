// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseReader.h"

#include "apps/input/HeaderCheck.h"
#include "apps/settings/TomlSettings.h"
#include "apps/workshop/VectorText.h"
#include "rules/language/Nearest.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>
#include <utility>

namespace Quorvane::Workshop {

namespace {

[[noreturn]] void s_fail(std::string const& path, toml::node const& node, std::string const& what) {
    throw SettingsError(tomlPlace(path, node.source().begin), what);
}

std::string s_text(std::string const& path, std::string_view name, toml::node const& node) {
    auto const* const text = node.as_string();
    if (text == nullptr) {
        s_fail(path, node, std::string(name) + " needs a text in quotes");
    }
    return text->get();
}

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
    static std::span<Key const> keys();

    [[noreturn]] void fail(toml::node const& node, std::string const& what) const {
        s_fail(m_path, node, what);
    }

    std::string text(std::string_view name, toml::node const& node) const {
        return s_text(m_path, name, node);
    }

    void readKey(toml::key const& name, toml::node const& node) {
        auto const own = keys();
        auto const key = std::find_if(own.begin(), own.end(),
                                      [&](Key const& one) { return one.m_name == name.str(); });
        if (key != own.end()) {
            (this->*key->m_read)(node);
        } else if (isCaseSetting(name.str())) {
            setFromToml(m_settings, name.str(), node, m_path);
        } else if (m_facts.find(name.str()) != nullptr) {
            setFromToml(m_facts, name.str(), node, m_path);
            m_fact = &node;
        } else {
            throw SettingsError(tomlPlace(m_path, name.source().begin), unknownKey(name.str()));
        }
    }

    std::string unknownKey(std::string_view name) const {
        std::vector<std::string_view> names;
        for (auto const& key : keys()) {
            names.push_back(key.m_name);
        }
        for (auto const& facts : m_facts.facts()) {
            names.push_back(facts.m_name);
        }
        addCaseSettings(names);
        return "a case has no key \"" + std::string(name) + '"' + Rules::didYouMean(name, names);
    }

    void readName(toml::node const& node) {
        m_case.m_name = text("name", node);
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
            auto const given = word != nullptr ? std::optional(word->get())
                                               : tomlScalar(SettingKind::integer, value);
            try {
                vector.set(name.str(), given.value_or(""));
            } catch (Rules::RuleError const& error) {
                fail(value, error.what());
            }
        }
        m_case.m_vector = vector.vector();
        noteInput(node);
    }

    void readMessage(toml::node const& node) { takeMessage(text("message", node), node); }

    void readFile(toml::node const& node) {
        auto const name = text("file", node);
        takeMessage(Rules::readFile(std::filesystem::path(m_path).parent_path() / name), node);
    }

    void takeMessage(std::string message, toml::node const& node) {
        auto const section =
            std::string_view(message).substr(0, HeaderReader::sectionLength(message));
        if (auto const problem = whyNotJudged(section, HeaderLimits()); !problem.empty()) {
            fail(node, problem);
        }
        m_case.m_headers = std::move(message);
        noteInput(node);
    }

    void noteInput(toml::node const& node) {
        if (m_hasInput) {
            fail(node, "a case has one of vector, message and file");
        }
        m_hasInput = true;
    }

    void readDns(toml::node const& node) { m_zoneLines = readZoneLines(m_path, node); }

    void readVerdict(toml::node const& node) {
        auto const verdict = text("verdict", node);
        if (verdict != "spam" && verdict != "ham" && verdict != "none") {
            fail(node, "\"" + verdict + "\" is not a verdict; write spam, ham or none" +
                           Rules::didYouMean(verdict, {"spam", "ham", "none"}));
        }
        m_case.m_expected.m_verdict = verdict;
    }

    void readNode(toml::node const& node) {
        auto const number = tomlScalar(SettingKind::integer, node);
        if (!number) {
            fail(node, "node is the number of a node or of an elite rule, 0 for none");
        }
        try {
            readSetting(*number, m_case.m_expected.m_node.emplace());
        } catch (SettingsError const& error) {
            fail(node, std::string("node: ") + error.what());
        }
    }

    double number(toml::node const& node) const {
        auto const found = node.value<double>();
        if (!found || !node.is_number() || std::isnan(*found)) {
            fail(node, "confidence is a number, or a range as in [0.9, 1.0]");
        }
        return *found;
    }

    void readConfidence(toml::node const& node) {
        auto const* const range = node.as_array();
        if (range != nullptr && range->size() != 2) {
            fail(node, "a range of confidence has two ends, the lower one first");
        }
        auto const low = number(range == nullptr ? node : range->front());
        auto const high = range == nullptr ? low : number(range->back());
        if (range != nullptr && !(low <= high)) {
            fail(node, "a range of confidence has two ends, the lower one first");
        }
        m_case.m_expected.m_confidence = {low, high};
    }

    void readReasons(toml::node const& node) {
        m_case.m_expected.m_reasons = text("reasons", node);
    }

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
            fail(*m_fact, "this describes a message, but the case has a vector; leave it out");
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

std::span<CaseReader::Key const> CaseReader::keys() {
    static constexpr Key keys[] = {
        {"name", &CaseReader::readName},       {"vector", &CaseReader::readVector},
        {"message", &CaseReader::readMessage}, {"file", &CaseReader::readFile},
        {"dns", &CaseReader::readDns},         {"verdict", &CaseReader::readVerdict},
        {"node", &CaseReader::readNode},       {"confidence", &CaseReader::readConfidence},
        {"reasons", &CaseReader::readReasons},
    };
    return keys;
}

} // namespace

// The test itself decides where rules and look-ups come from.
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
        s_fail(path, node,
               "dns is a list of zone-file lines, as in [\"mail.example. A 192.0.2.1\"]");
    }
    for (auto const& line : *array) {
        lines.push_back(s_text(path, "each line of dns", line));
    }
    return lines;
}

RuleCase readCase(toml::table const& table, std::string const& path, SettingsStore const& base,
                  std::vector<std::string> const& zoneLines) {
    return CaseReader(table, path, base).read(zoneLines);
}

} // namespace Quorvane::Workshop
