// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace Quorvane::Milter {

// The process number in a file, as long as the object lives. A SettingsError when it cannot be
// written. An empty path: none.
class PidFile {
  public:
    explicit PidFile(std::string path);
    PidFile(PidFile const&) = delete;
    PidFile& operator=(PidFile const&) = delete;
    ~PidFile();

    // Before the object ends.
    void remove();

  private:
    std::string m_path;
};

} // namespace Quorvane::Milter
