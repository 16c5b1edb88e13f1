// SPDX-License-Identifier: Apache-2.0
//
// Values of Python as the rooms below take them, and the reverse. All need the interpreter's lock.
#pragma once

#include "apps/settings/SettingsTable.h"

#include <pybind11/pybind11.h>
#include <string>
#include <string_view>

namespace Quorvane::Python {

// Text for people; bytes that are not UTF-8 become the characters of the same number.
pybind11::str textOf(std::string_view bytes);
// The same, or None for an empty text.
pybind11::object textOrNone(std::string_view bytes);

// The name of a file, as Python has it: os.fsdecode. And back: str, bytes or a path.
pybind11::str fileName(std::string_view path);
std::string pathOf(pybind11::handle path);

// The settings that an argument means: None (the defaults), the path of a settings file, or a
// mapping of names to values. Throws a SettingsError.
SettingsStore settingsOf(pybind11::handle argument);

// The same as a mapping with all that is not a default: paths absolute, lists as lists, the rest as
// text. It means the same on any machine and in any folder.
pybind11::dict settingsAsDict(pybind11::handle argument);

// A UserWarning of Python's module warnings.
void warn(std::string_view text);
// Warns of what is allowed and hardly meant.
void warnAbout(SettingsStore const& settings);

// What is known of a message besides its text: keyword arguments with the names of the options of
// qvscan, "_" for "-". Throws a SettingsError.
MessageFacts factsOf(pybind11::kwargs const& arguments);

// The header section of what is to be judged: bytes of a message, or a message of Python's.
std::string sectionOf(pybind11::handle message);

void bindSettings(pybind11::module_& module);

} // namespace Quorvane::Python
