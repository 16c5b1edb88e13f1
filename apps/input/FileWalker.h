// SPDX-License-Identifier: Apache-2.0
//
// FileWalker: the files that the PATHs of a command line name, in order: a file as it is; of a
// Maildir the messages in new and cur, of which one may be missing when tmp is there; of another
// folder all files below it, by name. Hidden files, a Maildir's tmp folder, and the index files
// that IMAP servers keep beside messages are left out. Only the listings of the folders on the
// current path are in memory. One object, one thread.
#pragma once

#include "apps/input/InputName.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// Whether a file of this name, without its folder, may hold mail: hidden files and the index files
// of IMAP servers do not.
bool isMailFileName(std::string_view name);

class FileWalker {
  public:
    // As InputName.h reads them; "-" means standard input and is returned as it is.
    explicit FileWalker(std::vector<std::string> const& paths);

    struct Entry {
        InputName m_name;
        // Not empty: why the path or folder cannot be opened.
        std::string m_error;
    };

    // False at the end.
    bool next(Entry& entry);

  private:
    std::string openFolder(std::filesystem::path const& folder);

    // The next one is the last.
    std::vector<InputName> m_pending;
};

} // namespace Quorvane
