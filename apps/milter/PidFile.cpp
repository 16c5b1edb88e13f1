// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/PidFile.h"

#include "apps/settings/SettingValue.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <unistd.h>
#include <utility>

namespace Quorvane::Milter {

PidFile::PidFile(std::string path) : m_path(std::move(path)) {
    if (m_path.empty()) {
        return;
    }
    try {
        Rules::replaceFile(m_path, std::to_string(::getpid()) + '\n');
    } catch (Rules::RuleError const& error) {
        throw SettingsError(std::string("pid-file: ") + error.what());
    }
}

// The daemon may have lost the right to do so; a number that is left behind harms nobody.
PidFile::~PidFile() {
    remove();
}

void PidFile::remove() {
    if (!m_path.empty()) {
        ::unlink(m_path.c_str());
    }
}

} // namespace Quorvane::Milter
