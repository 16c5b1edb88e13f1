// SPDX-License-Identifier: Apache-2.0
//
// Puts settings in force. Everything that they name (patterns, zone data, resolver, relays, scores,
// rules) is read and built first; then all of it is published together. When anything is wrong,
// nothing changes, and the SettingsError says what: file, line and column where known, and what
// to do.
//
// The platform's tables belong to the process: one host is in force at a time. Scans that are
// running when another one is set up finish; each message is judged by one host's settings, rules
// and scores. Call these from one thread at a time, while any number of others scan.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/settings/HostSettings.h"
#include "platform/Logger.h"

#include <memory>

namespace Quorvane {

// A host with the rules below the root folder of the settings. `logger`, when not null, becomes the
// process's logger. The root folder is set once: a later call with another one is refused, and so
// are rules that are newer than those in force and cannot be loaded.
std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings,
                                          std::shared_ptr<Logger> logger = nullptr);

// The same host, or one with the rules of a newer version if such are installed by now. A
// NoRulesError when they cannot be loaded.
std::shared_ptr<ScanHost const> withNewerRules(std::shared_ptr<ScanHost const> host);

// A host with an engine of the program's own; the root folder does not matter.
std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, DeepHeaderEngine engine);

} // namespace Quorvane
