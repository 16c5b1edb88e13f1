// SPDX-License-Identifier: Apache-2.0
#include "python/Errors.h"

#include "apps/input/ByteSource.h"
#include "apps/settings/SettingValue.h"
#include "include2/Exception.h"
#include "python/Argument.h"
#include "rules/model/RuleError.h"

#include <exception>
#include <pybind11/pybind11.h>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

py::object s_orNone(std::size_t number) {
    return number == 0 ? py::none() : py::object(py::int_(number));
}

void s_set(char const* name, std::string const& text, Rules::FilePlace const& place = {}) {
    auto const type = py::module_::import("qvdeepheader._errors").attr(name);
    auto const file = place.m_file.empty() ? py::none() : py::object(fileName(place.m_file));
    auto const error = type(textOf(text), file, s_orNone(place.m_line), s_orNone(place.m_column));
    PyErr_SetObject(type.ptr(), error.ptr());
}

void s_translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(std::move(thrown));
    } catch (SettingsError const& error) {
        s_set("SettingsError", error.what(), error.place());
    } catch (Rules::RuleError const& error) {
        s_set("RulesError", error.what(), error.place());
    } catch (NoMessage const& error) {
        s_set("MessageError", error.m_text);
    } catch (FailedScan const& error) {
        s_set("ScanError", error.m_text);
    } catch (Exception const& error) {
        s_set("Error", error.asString());
    }
}

} // namespace

void registerErrors() {
    py::register_exception_translator(&s_translate);
}

} // namespace Quorvane::Python
