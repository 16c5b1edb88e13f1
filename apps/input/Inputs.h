// SPDX-License-Identifier: Apache-2.0
//
// Inputs: the messages of all PATHs of a command line, one after another, with what went wrong on
// the way in its place between them. One object, one thread.
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
    // The header section, not looked at: it may hold no header field at all.
    std::string m_headers;
    // Not empty: this is no message but a problem, for people.
    std::string m_problem;
    // Of a problem: badData or noInput of ExitStatus.h.
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

    // Bytes done so far, as they stand on disk; of a file that is done all of them, read or not.
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
