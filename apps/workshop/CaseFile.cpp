// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseFile.h"

#include "apps/settings/TomlSettings.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/CaseReader.h"
#include "rules/language/Nearest.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <filesystem>
#include <map>

namespace Quorvane::Workshop {

namespace {

class CaseFileReader {
  public:
    explicit CaseFileReader(std::string const& path) : m_path(path) {
        m_base.set("dns", {"off"}, "rule tests");
    }

    CaseFile read() {
        auto const toml = parseToml(m_path, Rules::readFile(m_path));
        m_file.m_path = m_path;
        for (auto const& [name, node] : toml) {
            checkName(name);
        }
        readRules(toml["rules"].node());
        readSettings(toml["settings"].node());
        readCases(toml["case"].node());
        return std::move(m_file);
    }

  private:
    [[noreturn]] void fail(toml::source_position const& at, std::string const& what) const {
        throw SettingsError(tomlPlace(m_path, at), what);
    }

    void checkName(toml::key const& name) const {
        if (name != "rules" && name != "settings" && name != "case") {
            auto const text = std::string(name.str());
            fail(name.source().begin,
                 "unknown key \"" + text +
                     "\"; a file of rule tests has rules, [settings] and [[case]]" +
                     Rules::didYouMean(text, {"rules", "settings", "case"}));
        }
    }

    void readRules(toml::node const* node) {
        if (node == nullptr) {
            return;
        }
        auto const* const text = node->as_string();
        if (text == nullptr || text->get().empty()) {
            fail(node->source().begin, "rules is the path of a rule text or folder, in quotes");
        }
        m_file.m_rules = (std::filesystem::path(m_path).parent_path() / text->get()).string();
    }

    void readSettings(toml::node const* node) {
        if (node == nullptr) {
            return;
        }
        auto const* const table = node->as_table();
        if (table == nullptr) {
            fail(node->source().begin, "settings is a table: write [settings]");
        }
        for (auto const& [name, value] : *table) {
            readSetting(name, value);
        }
    }

    void readSetting(toml::key const& name, toml::node const& value) {
        if (name == "dns") {
            m_zoneLines = readZoneLines(m_path, value);
        } else if (isCaseSetting(name.str())) {
            setFromToml(m_base, name.str(), value, m_path);
        } else {
            std::vector<std::string_view> names{"dns"};
            addCaseSettings(names);
            fail(name.source().begin, "rule tests have no setting \"" + std::string(name.str()) +
                                          '"' + Rules::didYouMean(name.str(), names));
        }
    }

    void readCases(toml::node const* node) {
        auto const* const cases = node == nullptr ? nullptr : node->as_array();
        if (cases == nullptr || cases->empty()) {
            throw SettingsError(m_path + ": no case; begin each one with a line [[case]]");
        }
        for (auto const& element : *cases) {
            auto const* const table = element.as_table();
            if (table == nullptr) {
                fail(element.source().begin, "a case is a table: begin it with a line [[case]]");
            }
            addCase(readCase(*table, m_path, m_base, m_zoneLines), table->source().begin);
        }
    }

    void addCase(RuleCase one, toml::source_position const& at) {
        auto const [found, isNew] = m_lines.emplace(one.m_name, one.m_line);
        if (!isNew) {
            fail(at, "the case in line " + std::to_string(found->second) +
                         " has the same name; names must differ");
        }
        m_file.m_cases.push_back(std::move(one));
    }

    std::string const& m_path;
    SettingsStore m_base;
    std::vector<std::string> m_zoneLines;
    std::map<std::string, std::size_t> m_lines; // of the cases, by name
    CaseFile m_file;
};

} // namespace

CaseFile readCaseFile(std::string const& path) {
    try {
        return CaseFileReader(path).read();
    } catch (SettingsError const& error) {
        // The texts quote the file, which may hold anything.
        throw Rules::RuleError(Rules::RuleError::Kind::badData, toPrintable(error.what()));
    } catch (Rules::RuleError const& error) {
        throw Rules::RuleError(error.kind(), toPrintable(error.what()));
    }
}

} // namespace Quorvane::Workshop
