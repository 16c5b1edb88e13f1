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
#include <string>

namespace Quorvane {

// Whether an answer of DNS can change a verdict of the engine's rules.
bool needsLookups(DeepHeaderEngine const& engine);

// For programs that know better than the host of this process whether look-ups are of use, as they
// show attributes or judge with other rules: makes "auto" mean that names are asked, or not.
void settleDns(HostSettings& settings, bool isNeeded);

// A host with the rules below the root folder of the settings, which the program's users set by
// `rootName` ("--root"). `logger`, when not null, becomes the process's logger. The root folder is
// set once: a later call with another one is refused, and so are rules that are newer than those in
// force and cannot be loaded.
std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, std::string const& rootName,
                                          std::shared_ptr<Logger> logger = nullptr);

// The same host, or one with the rules of a newer version if such are installed by now. A
// NoRulesError when they cannot be loaded.
std::shared_ptr<ScanHost const> withNewerRules(std::shared_ptr<ScanHost const> host);

// A host with rules of the program's own; the root folder does not matter.
std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, LoadedRules rules);

// Puts in force what the process has one of, as this host's settings say.
void putInForce(ScanHost const& host);

// Whether two hosts can be in force at the same time, since what the process has one of (relays,
// patterns, resolver) is the same for both.
bool canBeSideBySide(ScanHost const& one, ScanHost const& other);

} // namespace Quorvane
