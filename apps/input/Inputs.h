// SPDX-License-Identifier: Apache-2.0
//
// Inputs: the messages of all PATHs of a command line, one after another; a problem with an input
// takes its place in the sequence. One object, one thread.
#pragma once

#include "apps/input/FileWalker.h"
#include "apps/input/MessageReader.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Quorvane {

struct InputItem {
    // PATH; PATH:N for the N-th message of an mbox; "-" for standard input.
    std::string m_source;
    // The header section, unchecked: it may hold no header field at all.
    std::string m_headers;
    // Not empty: this is not a message but a problem, described for people.
    std::string m_problem;
    // Of a problem: ExitStatus::badData or noInput.
    int m_exitStatus = 0;
};

class Inputs {
  public:
    // No path means standard input. `interrupt` outlives the object.
    Inputs(std::vector<std::string> paths, Interrupt& interrupt);
    // One input that is open already.
    Inputs(std::string path, std::unique_ptr<ByteSource> source, Interrupt& interrupt);

    // False at the end. Throws Interrupted.
    bool next(InputItem& item);

    // Bytes on disk done so far; all bytes of a finished file count, read or not.
    std::uint64_t position() const;

  private:
    bool openNext(InputItem& item);
    bool readNext(InputItem& item);
    void close();

    Interrupt& m_interrupt;
    FileWalker m_files;
    std::string m_path;
    std::unique_ptr<MessageReader> m_reader;
    std::uint64_t m_closedBytes = 0;
};

} // namespace Quorvane
