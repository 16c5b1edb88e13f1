// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Inputs.h"

#include "apps/commandline/ProgramError.h"

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

Inputs::Inputs(std::vector<std::string> paths, Interrupt& interrupt)
    : m_interrupt(interrupt), m_files(s_orStandardInput(std::move(paths))) {}

Inputs::Inputs(std::string path, std::unique_ptr<ByteSource> source, Interrupt& interrupt)
    : m_interrupt(interrupt), m_files({}), m_path(std::move(path)),
      m_reader(std::make_unique<MessageReader>(std::move(source), m_path == "-")) {}

bool Inputs::next(InputItem& item) {
    for (;;) {
        item = InputItem();
        if (!m_reader && !openNext(item)) {
            return false;
        }
        if (!item.m_problem.empty() || readNext(item)) {
            return true;
        }
    }
}

// False when there is no input left; a problem in `item` when it cannot be opened.
bool Inputs::openNext(InputItem& item) {
    FileWalker::Entry entry;
    if (!m_files.next(entry)) {
        return false;
    }
    item.m_source = m_path = entry.m_path;
    if (!entry.m_error.empty()) {
        s_setProblem(item, ExitStatus::noInput, "cannot be opened: " + entry.m_error);
        return true;
    }
    try {
        m_reader = std::make_unique<MessageReader>(openInput(m_path, m_interrupt), m_path == "-");
    } catch (InputError const& error) {
        s_setProblem(item, ExitStatus::noInput, std::string("cannot be opened: ") + error.what());
    }
    return true;
}

// False when the open input has ended.
bool Inputs::readNext(InputItem& item) {
    HeaderSection section;
    item.m_source = m_path;
    try {
        if (!m_reader->next(section)) {
            close();
            return false;
        }
    } catch (InputError const& error) {
        close();
        s_setProblem(item, ExitStatus::noInput, std::string("cannot be read: ") + error.what());
        return true;
    }
    if (section.m_number != 0) {
        item.m_source += ":" + std::to_string(section.m_number);
    }
    if (section.m_isTooLong) {
        s_setProblem(item, ExitStatus::badData,
                     "not a message: its header section is longer than " +
                         std::to_string(maxHeaderSection >> 20) + " MiB");
    } else {
        item.m_headers = std::move(section.m_text);
    }
    return true;
}

void Inputs::close() {
    m_closedBytes += std::max(m_reader->position(), s_size(m_path));
    m_reader.reset();
}

std::uint64_t Inputs::position() const {
    return m_closedBytes + (m_reader ? m_reader->position() : 0);
}

} // namespace Quorvane
