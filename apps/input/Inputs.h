// SPDX-License-Identifier: Apache-2.0
//
// Inputs: the messages of all PATHs of a command line, one after another; a problem with an input
// takes its place in the sequence. One object, one thread.
#pragma once

#include "apps/input/Archive.h"
#include "apps/input/FileWalker.h"
#include "apps/input/MessageReader.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

struct InputItem {
    // Keeps the memory of the texts.
    void clear();

    // PATH, or "-" for standard input; PATH/MEMBER for a file in an archive; with :N for the N-th
    // message of an mbox.
    std::string m_source;
    // The header section, with at least one header field.
    std::string m_headers;
    // Not empty: this is not a message but a problem, described for people.
    std::string m_problem;
    // Of a problem: ExitStatus::badData or noInput.
    int m_exitStatus = 0;
    // Bytes on disk of all inputs up to its end, or a little further, as files are read in blocks.
    std::uint64_t m_position = 0;
    // The whole message, if copies are wanted and it could be read to its end.
    std::shared_ptr<MessageCopy const> m_copy = {};
};

class Inputs {
  public:
    // No path means standard input. `wait` outlives the object. A message beyond the limits is
    // a problem. `copies`: copies of the messages are wanted; large ones are kept in this folder.
    Inputs(std::vector<std::string> const& paths, InputWait const& wait, HeaderLimits const& limits,
           std::optional<std::filesystem::path> copies = std::nullopt);
    // One input that is open already.
    Inputs(std::string path, OpenInput opened, InputWait const& wait, HeaderLimits const& limits);

    // False at the end. Throws what ended a wait for input. Uses the memory of `item` again.
    bool next(InputItem& item);

  private:
    bool openNext(InputItem& item);
    void openMember(InputItem& item);
    void openMember(Archive::Member& member, InputItem& item);
    bool isWanted(std::string const& member);
    void startReading(std::unique_ptr<ByteSource> source);
    void readMessage(InputItem& item);
    void takeMessage(HeaderSection& section, InputItem& item);
    void noteMissing(InputItem& item) const;
    void closeSource();
    void closeFile();
    std::uint64_t openPosition() const;
    std::uint64_t position() const;

    InputWait const& m_wait;
    FileWalker m_files;
    HeaderLimits m_limits;
    std::optional<std::filesystem::path> m_copies;
    InputName m_name;     // what is wanted of the file that is open
    std::string m_source; // what is being read
    std::unique_ptr<Archive> m_archive;
    std::unique_ptr<MessageReader> m_reader; // of the file, or of a file in the archive
    bool m_isFound = false;                  // the wanted file of the archive
    std::size_t m_lastNumber = 0;            // of the messages that have been read
    std::uint64_t m_closedBytes = 0;
};

} // namespace Quorvane
