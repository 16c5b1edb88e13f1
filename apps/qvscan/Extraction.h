// SPDX-License-Identifier: Apache-2.0
//
// Extraction: writes messages as files into a folder, byte for byte as they were found. The names
// begin with the position of the message among the inputs, so they sort in the order of the input;
// no file is ever written over. One object, one thread at a time.
#pragma once

#include "apps/input/MessageCopy.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace Quorvane {

class Extraction {
  public:
    // Makes the folder if it is not there. Throws a ProgramError.
    explicit Extraction(std::filesystem::path folder);

    // Writes the message at `position` (from 1). False when that fails: error then says why.
    bool write(MessageCopy const& copy, std::uint64_t position, std::string const& source);
    std::string const& error() const { return m_error; }

  private:
    std::filesystem::path m_folder;
    std::string m_error;
};

// "00000012-archive.mbox-3.eml" for "mail/archive.mbox:3".
std::string extractedName(std::uint64_t position, std::string const& source);

} // namespace Quorvane
