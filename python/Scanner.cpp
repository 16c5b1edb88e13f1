// SPDX-License-Identifier: Apache-2.0
#include "python/Scanner.h"

#include "apps/host/HostSetup.h"
#include "apps/input/HeaderCheck.h"
#include "apps/settings/SettingFiles.h"
#include "apps/story/JsonRecord.h"
#include "platform/HeaderReader.h"
#include "python/Argument.h"
#include "python/Errors.h"
#include "python/ScanMany.h"
#include "rules/format/RulePlace.h"
#include "rules/language/LoadRules.h"

#include <filesystem>
#include <pybind11/stl.h>
#include <stdexcept>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

// What was put in force last, by whatever scanner. Under the interpreter's lock.
std::shared_ptr<ScanHost const>& s_inForce() {
    static std::shared_ptr<ScanHost const> host;
    return host;
}

// The folder with lib and share; the package lies in lib/python3/dist-packages/qvdeepheader.
std::filesystem::path s_prefix() {
    auto const package = py::module_::import("qvdeepheader").attr("__file__");
    std::filesystem::path folder(pathOf(package));
    for (int level = 0; level < 5; ++level) {
        folder = folder.parent_path();
    }
    return folder;
}

std::shared_ptr<ScanHost const> s_host(HostSettings const& settings,
                                       std::filesystem::path const& rules) {
    auto const withTexts = withFiles(settings);
    auto loaded = loadedRules(Rules::loadRules(rules).m_set);
    return std::make_shared<ScanHost const>(withTexts, std::move(loaded));
}

[[noreturn]] void s_refuse(std::string const& source, std::string const& why) {
    throw NoMessage{source.empty() ? why : source + ": " + why};
}

} // namespace

Message messageOf(py::handle message) {
    if (py::isinstance<Message>(message)) {
        return message.cast<Message const&>();
    }
    return {{}, sectionOf(message), {}, 0};
}

Scanner::Scanner(py::handle rules, py::handle settings) {
    auto store = settingsOf(settings);
    warnAbout(store);
    useOwnRulesIfNoneAreInstalled(store, s_prefix());
    auto const path =
        rules.is_none() ? ruleFolderOfRoot(store.values().m_root).string() : pathOf(rules);
    {
        py::gil_scoped_release const release; // files may be slow
        m_host = s_host(store.values(), path);
    }
    if (auto const& problem = m_host->namesProblem(); !problem.empty()) {
        warn(path + ": " + problem + "; rules are without names");
    }
    auto& inForce = s_inForce();
    if (inForce == nullptr || !canBeSideBySide(*inForce, *m_host)) {
        putInForce(*m_host);
        inForce = m_host;
    }
    m_platform = inForce;
}

void Scanner::requireInForce() const {
    if (m_platform != s_inForce()) {
        throw std::runtime_error(
            "a later Scanner has put other relays, patterns or DNS settings in force, of which a "
            "process has one set; make this one anew, or use one process for each");
    }
}

std::string Scanner::problemWith(std::string_view headers, std::string const& problem) const {
    return problem.empty() ? whyNotJudged(headers, m_host->settings().m_limits) : problem;
}

void Scanner::judge(InputItem const& item, Judgement& judgement) const {
    auto const problem = problemWith(item.m_headers, item.m_problem);
    if (!problem.empty()) {
        takeProblem(judgement, item.m_source, problem);
        return;
    }
    auto const headers = m_host->read(item.m_headers);
    takeRecord(judgement, item.m_source, m_host->scan(headers, {}, RecordDepth::result),
               m_host->ruleNames());
}

Scanner::Scan Scanner::scan(py::handle message, py::kwargs const& facts, RecordDepth depth) const {
    requireInForce();
    auto taken = messageOf(message);
    auto const known = factsOf(facts);
    py::gil_scoped_release const release;
    if (auto const problem = problemWith(taken.m_headers, taken.m_error); !problem.empty()) {
        s_refuse(taken.m_source, problem);
    }
    auto const headers = m_host->read(taken.m_headers);
    auto record = m_host->scan(headers, known, depth);
    if (record.failure) {
        throw FailedScan{*record.failure};
    }
    return {std::move(taken.m_source), headers, std::move(record)};
}

Answer Scanner::scan(py::handle message, py::kwargs const& facts) const {
    auto const done = scan(message, facts, RecordDepth::result);
    Judgement judgement;
    takeRecord(judgement, done.m_source, done.m_record, m_host->ruleNames());
    return answer(std::move(judgement));
}

py::object Scanner::explain(py::handle message, py::kwargs const& facts) const {
    auto const done = scan(message, facts, RecordDepth::alternatives);
    auto const json = jsonExplanation(done.m_source, done.m_headers, done.m_record,
                                      m_host->settings().m_judging, m_host->ruleNames());
    return py::module_::import("json").attr("loads")(json);
}

py::object Scanner::vector(py::handle message, py::kwargs const& facts) const {
    auto const done = scan(message, facts, RecordDepth::result);
    if (!done.m_record.isJudged()) {
        return py::none();
    }
    auto const& values = done.m_record.attributes;
    return py::module_::import("array").attr("array")(
        "i", py::bytes(reinterpret_cast<char const*>(values.data()), sizeof values));
}

void bindScanner(py::module_& module) {
    py::class_<Scanner, std::shared_ptr<Scanner>>(
        module, "Scanner", py::is_final(),
        "Rules and settings that judge messages.\n\n"
        "rules: a rule text, or a folder with compiled rules; None for the rules below the\n"
        "setting root, or those that came with the package when none are installed. settings:\n"
        "the path of a settings file, or a mapping such as {'internal': ['192.0.2.0/24'],\n"
        "'dns': 'off'}; None for the defaults. Raises SettingsError or RulesError.\n\n"
        "Relays, patterns and DNS settings belong to the process: a Scanner that is made later\n"
        "with other ones replaces them, and the earlier one raises RuntimeError when it is used.\n"
        "dns = 'auto' asks for names only when the rules test what comes from DNS.")
        .def(py::init<py::object const&, py::object const&>(), py::arg("rules") = py::none(),
             py::arg("settings") = py::none())
        .def(
            "scan", py::overload_cast<py::handle, py::kwargs const&>(&Scanner::scan, py::const_),
            py::arg("message"), py::pos_only(),
            "Judges one message: bytes, a Message, or an email.message.Message. Keywords are what\n"
            "is known besides: env_from, header_from, recipient, client and the like, as qvscan\n"
            "names its options. Raises MessageError for what is no message, ScanError for a scan\n"
            "that failed.")
        .def("explain", &Scanner::explain, py::arg("message"), py::pos_only(),
             "The same, with the whole explanation: the JSON record of qvscan --explain as a dict.")
        .def("vector", &Scanner::vector, py::arg("message"), py::pos_only(),
             "The attributes of a message in the order of qvdeepheader.attributes, as an array of\n"
             "38 integers; None when there is nothing to judge.")
        .def("scan_many", &scanMany, py::arg("messages"), py::arg("threads") = 0,
             "Judges messages, of any kind that scan takes, and yields their answers in the same\n"
             "order. What cannot be judged has an error and ends nothing. threads: 1 for none but\n"
             "the caller's, 0 for what the setting jobs says (one for each core). Reads some\n"
             "hundred messages ahead, of messages() some thousand, which no one else can take\n"
             "until the scan ends.")
        .def_property_readonly("rule_version", &Scanner::ruleVersion,
                               "The version of the rules; None when they have none.");
}

} // namespace Quorvane::Python
