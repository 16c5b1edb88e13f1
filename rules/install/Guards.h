// SPDX-License-Identifier: Apache-2.0
//
// What an installation holds while it works: the lock of the folder, and the signals that would end
// the program half-way.
#pragma once

#include <csignal>
#include <filesystem>

namespace Quorvane::Rules {

// Waits until no other installation works in `folder`.
class FolderLock {
  public:
    explicit FolderLock(std::filesystem::path const& folder);
    FolderLock(FolderLock const&) = delete;
    FolderLock& operator=(FolderLock const&) = delete;
    ~FolderLock();

  private:
    int m_fd;
};

// Signals of the calling thread that arrive are delivered at the end.
class SignalsHeldBack {
  public:
    SignalsHeldBack();
    SignalsHeldBack(SignalsHeldBack const&) = delete;
    SignalsHeldBack& operator=(SignalsHeldBack const&) = delete;
    ~SignalsHeldBack();

  private:
    sigset_t m_before;
};

} // namespace Quorvane::Rules
