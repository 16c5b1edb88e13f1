// SPDX-License-Identifier: Apache-2.0
//
// InputName: what a PATH of a command line names, in the forms that reports show: a file or folder;
// FILE:N, message N of a mailbox; ARCHIVE/MEMBER, a file in an archive, also with :N. A plain
// value.
#pragma once

#include <cstddef>
#include <string>

namespace Quorvane {

struct InputName {
    // A file, a folder, or "-" for standard input.
    std::string m_path;
    // The file in the archive at m_path; empty: all of them, or it is no archive.
    std::string m_member;
    // Of the message in the mailbox, from 1; 0: all of them.
    std::size_t m_number = 0;

    bool isWhole() const { return m_member.empty() && m_number == 0; }
    // Without the number, as reports show it.
    std::string source() const;
};

// What exists under the whole text is meant by it, whatever its name looks like. A text that names
// nothing comes back as m_path.
InputName inputName(std::string const& text);

} // namespace Quorvane
