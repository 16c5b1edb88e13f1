// SPDX-License-Identifier: Apache-2.0
//
// MessageCopy: the bytes of a message as they were found, kept until it is known whether they are
// wanted. Small messages stay in memory, large ones in a file without a name. Filled on one thread,
// then only written.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace Quorvane {

class MessageCopy {
  public:
    // `folder`: where large messages are kept.
    explicit MessageCopy(std::filesystem::path folder) : m_folder(std::move(folder)) {}
    MessageCopy(MessageCopy const&) = delete;
    MessageCopy& operator=(MessageCopy const&) = delete;
    ~MessageCopy();

    // An error is kept for writeTo.
    void append(std::string_view bytes) noexcept;

    // Writes a new file, never over another one. An errno; 0: done.
    int writeTo(std::filesystem::path const& path) const;

    // What it holds of the machine, in bytes. A file counts like the most that stays in memory:
    // there are limits for open files, too.
    std::size_t cost() const;

  private:
    void moveToFile();

    std::filesystem::path m_folder;
    std::string m_bytes; // unless there is a file
    int m_file = -1;
    int m_error = 0;
};

} // namespace Quorvane
