// SPDX-License-Identifier: Apache-2.0
//
// What a host can know about a message besides its text, as rows like those of settings: named
// after "--" on the command line and in the files of rule tests, and no part of a settings file.
#pragma once

#include "apps/settings/MessageFacts.h"
#include "apps/settings/SettingsSection.h"

#include <span>

namespace Quorvane {

std::span<SettingRow<MessageFacts> const> factRows();

class FactsStore : public Settings<MessageFacts> {
  public:
    FactsStore() : Settings("", factRows()) {}
};

} // namespace Quorvane
