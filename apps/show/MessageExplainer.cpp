// SPDX-License-Identifier: Apache-2.0
#include "apps/show/MessageExplainer.h"

#include "apps/host/HostSetup.h"
#include "apps/input/Inputs.h"
#include "apps/settings/SettingsTable.h"
#include "apps/story/JsonRecord.h"
#include "apps/workshop/MailVectors.h"
#include "apps/workshop/VectorText.h"

#include <algorithm>
#include <glib.h>
#include <utility>

namespace Quorvane::Show {

namespace {

void s_set(HostSettings& settings, std::string const& name, std::string const& value) {
    auto const rows = settingRows();
    auto const row = std::find_if(rows.begin(), rows.end(), [&name](auto const& each) {
        return each.m_facts.m_name == name && each.m_facts.m_isOfRules;
    });
    if (row == rows.end()) {
        throw SettingsError("a page cannot set \"" + name + "\"");
    }
    try {
        if (row->m_check != nullptr) {
            row->m_check(value);
        }
        row->m_assign(settings, value);
    } catch (SettingsError const& error) {
        throw SettingsError(name + ": " + error.what());
    }
}

} // namespace

HostSettings askedSettings(HostSettings host, std::string_view query) {
    GUriParamsIter pairs;
    g_uri_params_iter_init(&pairs, query.data(), static_cast<gssize>(query.size()), "&",
                           G_URI_PARAMS_WWW_FORM);
    while (true) {
        g_autofree char* name = nullptr;
        g_autofree char* value = nullptr;
        g_autoptr(GError) error = nullptr;
        if (!g_uri_params_iter_next(&pairs, &name, &value, &error)) {
            if (error != nullptr) {
                throw SettingsError(std::string("settings of a page: ") + error->message);
            }
            return host;
        }
        s_set(host, name, value);
    }
}

MessageExplainer::MessageExplainer(HostSettings const& settings, LoadedRules rules,
                                   MessageFacts facts)
    : m_host(setUpHost(settings, std::move(rules))), m_facts(std::move(facts)) {}

std::string MessageExplainer::explain(std::string const& source, std::string_view message) const {
    return explain(*m_host, source, message);
}

std::string MessageExplainer::answer(PageQuestion const& question) const {
    auto const settings = askedSettings(m_host->settings(), question.m_query);
    auto const host = m_host->judgingWith(settings.m_judging);
    if (!question.m_isVector) {
        return explain(host, "message", question.m_text);
    }
    auto const record =
        host.judge(Workshop::parseVector(question.m_text), RecordDepth::alternatives);
    return jsonExplanation("vector", HeaderContainer(), record, settings.m_judging,
                           host.ruleNames());
}

std::string MessageExplainer::explain(ScanHost const& host, std::string const& source,
                                      std::string_view message) const {
    auto const headers = Workshop::messageHeaders(
        host, source, message.substr(0, HeaderReader::sectionLength(message)));
    auto const record = host.scan(headers, m_facts, RecordDepth::alternatives);
    return jsonExplanation(source, headers, record, host.settings().m_judging, host.ruleNames());
}

void readMessages(std::vector<std::string> const& paths, HeaderLimits const& limits,
                  Interrupt& interrupt, std::function<void(PageMessage message)> const& take) {
    if (paths.empty()) {
        return; // none would mean standard input
    }
    Inputs inputs(paths, interrupt, limits);
    InputItem item;
    while (inputs.next(item)) {
        Workshop::requireReadable(item);
        take({item.m_source, item.m_headers, {}});
    }
}

} // namespace Quorvane::Show
