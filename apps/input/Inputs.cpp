// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Inputs.h"

#include "apps/commandline/ProgramError.h"
#include "apps/input/HeaderCheck.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace Quorvane {

namespace {

std::vector<std::string> s_orStandardInput(std::vector<std::string> paths) {
    if (paths.empty()) {
        paths.emplace_back("-");
    }
    return paths;
}

// 0 for what is not a file.
std::uint64_t s_size(std::string const& path) {
    std::error_code error;
    auto const size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

void s_setProblem(InputItem& item, int exitStatus, std::string text) {
    item.m_problem = std::move(text);
    item.m_exitStatus = exitStatus;
    item.m_headers.clear();
}

} // namespace

void InputItem::clear() {
    m_source.clear();
    m_headers.clear();
    m_problem.clear();
    m_exitStatus = 0;
    m_position = 0;
    m_copy.reset();
}

Inputs::Inputs(std::vector<std::string> const& paths, InputWait const& wait,
               HeaderLimits const& limits, std::optional<std::filesystem::path> copies)
    : m_wait(wait), m_files(s_orStandardInput(paths)), m_limits(limits),
      m_copies(std::move(copies)) {}

Inputs::Inputs(std::string path, OpenInput opened, InputWait const& wait,
               HeaderLimits const& limits)
    : m_wait(wait), m_files({}), m_limits(limits), m_name{std::move(path), {}, 0},
      m_source(m_name.m_path), m_archive(std::move(opened.m_archive)) {
    if (opened.m_bytes) {
        startReading(std::move(opened.m_bytes));
    }
}

bool Inputs::next(InputItem& item) {
    item.clear();
    while (item.m_problem.empty() && item.m_headers.empty()) {
        if (m_reader) {
            readMessage(item);
        } else if (m_archive) {
            openMember(item);
        } else if (!openNext(item)) {
            return false;
        }
    }
    item.m_position = position();
    return true;
}

// False when there is no input left; a problem in `item` when it cannot be opened.
bool Inputs::openNext(InputItem& item) {
    FileWalker::Entry entry;
    if (!m_files.next(entry)) {
        return false;
    }
    m_name = std::move(entry.m_name);
    item.m_source = m_source = m_name.source();
    if (!entry.m_error.empty()) {
        s_setProblem(item, ExitStatus::noInput, "cannot be opened: " + entry.m_error);
        return true;
    }
    try {
        auto opened = openInput(m_name.m_path, m_wait);
        if (opened.m_bytes && !m_name.m_member.empty()) {
            throw InputError("it is no archive");
        }
        m_archive = std::move(opened.m_archive);
        if (opened.m_bytes) {
            startReading(std::move(opened.m_bytes));
        }
    } catch (InputError const& error) {
        s_setProblem(item, ExitStatus::noInput, std::string("cannot be opened: ") + error.what());
    }
    return true;
}

void Inputs::startReading(std::unique_ptr<ByteSource> source) {
    m_reader = std::make_unique<MessageReader>(std::move(source),
                                               ReaderOptions{m_source == "-", m_copies, m_limits});
}

// The next file of an archive, if there is one.
void Inputs::openMember(InputItem& item) {
    Archive::Member member;
    try {
        if (!m_archive->next(member)) {
            if (!m_name.m_member.empty()) {
                item.m_source = m_name.source();
                s_setProblem(item, ExitStatus::noInput,
                             "cannot be opened: there is no such file in the archive");
            }
            closeFile();
            return;
        }
    } catch (InputError const& error) {
        item.m_source = m_name.m_path;
        s_setProblem(item, ExitStatus::noInput, std::string("cannot be read on: ") + error.what());
        closeFile();
        return;
    }
    if (isWanted(member.m_name)) {
        openMember(member, item);
    }
}

// A member whose real name ends in ":N" is meant by that.
bool Inputs::isWanted(std::string const& member) {
    if (m_name.m_member.empty()) {
        return true;
    }
    if (m_name.m_number != 0 && member == m_name.m_member + ":" + std::to_string(m_name.m_number)) {
        m_name.m_number = 0;
        m_isFound = true;
    }
    m_isFound = m_isFound || member == m_name.m_member;
    return m_isFound;
}

void Inputs::openMember(Archive::Member& member, InputItem& item) {
    m_source = m_name.m_path + (member.m_name.empty() ? "" : "/" + member.m_name);
    if (member.m_source) {
        startReading(std::move(member.m_source));
        return;
    }
    item.m_source = m_source;
    s_setProblem(item, ExitStatus::noInput, "cannot be read: " + member.m_problem);
    closeSource();
}

// The next message of what is being read, if there is one.
void Inputs::readMessage(InputItem& item) {
    item.m_source = m_source;
    HeaderSection section;
    section.m_text = std::move(item.m_headers); // its memory
    try {
        if (!m_reader->next(section)) {
            noteMissing(item);
            closeSource();
            return;
        }
    } catch (InputError const& error) {
        closeSource();
        s_setProblem(item, ExitStatus::noInput, std::string("cannot be read: ") + error.what());
        return;
    }
    m_lastNumber = section.m_number;
    if (m_name.m_number != 0 && section.m_number != m_name.m_number) {
        return;
    }
    takeMessage(section, item);
    if (m_name.m_number != 0) {
        closeSource();
    }
}

// A certain message of a mailbox is wanted, and it has not come.
void Inputs::noteMissing(InputItem& item) const {
    if (m_name.m_number == 0 || m_lastNumber == m_name.m_number) {
        return;
    }
    item.m_source += ":" + std::to_string(m_name.m_number);
    s_setProblem(item, ExitStatus::noInput,
                 m_lastNumber == 0
                     ? "cannot be opened: it is a single message, no mailbox"
                     : "cannot be opened: the mailbox has " + std::to_string(m_lastNumber) +
                           (m_lastNumber == 1 ? " message" : " messages"));
}

void Inputs::takeMessage(HeaderSection& section, InputItem& item) {
    if (section.m_number != 0) {
        item.m_source += ":" + std::to_string(section.m_number);
    }
    auto problem = section.m_problem.empty() ? whyNotJudged(section.m_text, m_limits)
                                             : std::move(section.m_problem);
    if (!problem.empty()) {
        s_setProblem(item, ExitStatus::badData, std::move(problem));
    } else {
        item.m_headers = std::move(section.m_text);
        item.m_copy = std::move(section.m_copy);
    }
}

// The end of a file, or of a file in an archive.
void Inputs::closeSource() {
    m_lastNumber = 0;
    if (!m_archive || m_isFound) {
        closeFile();
    } else {
        m_reader.reset();
    }
}

void Inputs::closeFile() {
    m_closedBytes += std::max(openPosition(), s_size(m_name.m_path));
    m_reader.reset();
    m_archive.reset();
    m_isFound = false;
}

std::uint64_t Inputs::openPosition() const {
    if (m_archive) {
        return m_archive->position();
    }
    return m_reader ? m_reader->position() : 0;
}

// All bytes of a finished file count, read or not.
std::uint64_t Inputs::position() const {
    return m_closedBytes + openPosition();
}

} // namespace Quorvane
