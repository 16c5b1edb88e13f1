// SPDX-License-Identifier: Apache-2.0
//
// FileWalker: the files that the PATHs of a command line stand for, in order: a file as it is; of a
// Maildir the messages in new and cur, of which one may be missing when tmp is there; of another
// folder all files below it, by name. Left out are hidden files, a Maildir's tmp folder, and the
// index files that IMAP servers keep beside messages. Only the listings of the folders on the way
// down are in memory. One object, one thread.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Quorvane {

class FileWalker {
  public:
    // "-" stands for standard input and is handed through.
    explicit FileWalker(std::vector<std::string> paths);

    struct Entry {
        std::string m_path;
        // Set when the path or folder cannot be opened: why.
        std::string m_error;
    };

    // False at the end.
    bool next(Entry& entry);

  private:
    struct Pending {
        std::filesystem::path m_path;
        bool m_isNamed = false; // on the command line: taken whatever it is
    };

    void openFolder(std::filesystem::path const& folder, Entry& entry);

    // The next one is the last.
    std::vector<Pending> m_pending;
};

} // namespace Quorvane
