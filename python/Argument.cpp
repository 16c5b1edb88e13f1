// SPDX-License-Identifier: Apache-2.0
#include "python/Argument.h"

#include "apps/settings/SettingSources.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderReader.h"
#include "rules/language/Nearest.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <pybind11/stl.h>
#include <vector>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

// The text that a settings file would have.
std::string s_valueText(std::string const& name, py::handle value) {
    if (py::isinstance<py::bool_>(value)) {
        return value.cast<bool>() ? "1" : "0";
    }
    if (py::isinstance<py::str>(value) || py::isinstance<py::int_>(value) ||
        py::isinstance<py::float_>(value)) {
        return py::str(value).cast<std::string>();
    }
    if (py::hasattr(value, "__fspath__")) {
        return pathOf(value);
    }
    throw SettingsError(name + ": a value is a text, a number, or a list of texts");
}

SettingTexts s_texts(std::string const& name, py::handle value) {
    SettingTexts texts;
    if (py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) {
        for (auto const element : value) {
            texts.push_back(s_valueText(name, element));
        }
    } else {
        texts.push_back(s_valueText(name, value));
    }
    return texts;
}

void s_set(SettingsSection& section, std::string const& name, py::handle value) {
    auto const* const facts = section.find(name);
    if (facts == nullptr) {
        std::vector<std::string_view> names;
        std::transform(section.facts().begin(), section.facts().end(), std::back_inserter(names),
                       [](SettingFacts const& each) { return each.m_name; });
        throw SettingsError("there is no setting \"" + name + "\"" +
                            Rules::didYouMean(name, names));
    }
    auto const texts = s_texts(name, value);
    if (facts->m_kind != SettingKind::list && texts.size() != 1) {
        throw SettingsError(name + ": it takes one value, no list");
    }
    section.set(name, texts, "Python");
}

// REQUIRES: a setting that is no list has one text.
py::object s_pythonValue(SettingFacts const& facts, SettingTexts const& texts) {
    if (facts.m_kind == SettingKind::list) {
        return py::cast(texts);
    }
    auto const& text = texts.front();
    bool const isPath = facts.m_kind == SettingKind::path && !text.empty();
    return isPath ? fileName(std::filesystem::absolute(text).string()) : py::str(text);
}

} // namespace

py::str textOf(std::string_view bytes) {
    return py::str(toUtf8(bytes));
}

py::object textOrNone(std::string_view bytes) {
    return bytes.empty() ? py::none() : py::object(textOf(bytes));
}

py::str fileName(std::string_view path) {
    auto* const text =
        PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<Py_ssize_t>(path.size()));
    if (text == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::str>(text);
}

std::string pathOf(py::handle path) {
    PyObject* bytes = nullptr;
    if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::bytes>(bytes);
}

SettingsStore settingsOf(py::handle argument) {
    SettingsStore settings;
    if (argument.is_none()) {
        return settings;
    }
    if (py::isinstance<py::dict>(argument) || py::hasattr(argument, "items")) {
        for (auto const item : argument.attr("items")()) {
            auto const pair = item.cast<std::pair<py::str, py::object>>();
            s_set(settings, pair.first, pair.second);
        }
        return settings;
    }
    auto const path = pathOf(argument);
    SettingsSection* const sections[] = {&settings};
    py::gil_scoped_release const release; // it may be a pipe
    loadSettingsFile(path, "", sections);
    return settings;
}

py::dict settingsAsDict(py::handle argument) {
    auto const settings = settingsOf(argument);
    py::dict values;
    for (auto const& facts : settings.facts()) {
        if (settings.origin(facts.m_name) != defaultOrigin) {
            values[py::str(facts.m_name.data(), facts.m_name.size())] =
                s_pythonValue(facts, settings.texts(facts.m_name));
        }
    }
    return values;
}

void warn(std::string_view text) {
    if (PyErr_WarnEx(PyExc_UserWarning, toUtf8(text).c_str(), 1) != 0) {
        throw py::error_already_set(); // whoever wants warnings to be errors gets them so
    }
}

void warnAbout(SettingsStore const& settings) {
    for (auto const& warning : settingWarnings(settings)) {
        warn(warning);
    }
}

MessageFacts factsOf(py::kwargs const& arguments) {
    FactsStore facts;
    for (auto const& [key, value] : arguments) {
        auto name = key.cast<std::string>();
        std::replace(name.begin(), name.end(), '_', '-');
        s_set(facts, name, value);
    }
    return facts.values();
}

std::string sectionOf(py::handle message) {
    if (PyObject_CheckBuffer(message.ptr()) == 0) {
        return py::bytes(py::module_::import("qvdeepheader._mail").attr("header_bytes")(message));
    }
    Py_buffer view;
    if (PyObject_GetBuffer(message.ptr(), &view, PyBUF_SIMPLE) != 0) {
        throw py::error_already_set();
    }
    std::string_view const bytes(static_cast<char const*>(view.buf),
                                 static_cast<std::size_t>(view.len));
    std::unique_ptr<Py_buffer, void (*)(Py_buffer*)> const end(&view, PyBuffer_Release);
    return std::string(bytes.substr(0, HeaderReader::sectionLength(bytes)));
}

void bindSettings(py::module_& module) {
    module.def(
        "settings", &settingsAsDict, py::arg("source"), py::pos_only(),
        "The settings of a file, or of a mapping, checked, as a mapping for Scanner and\n"
        "messages: all that are not defaults. Paths in it are absolute, so that it means the\n"
        "same in another process that sees the same files. Raises SettingsError.");
}

} // namespace Quorvane::Python
