// SPDX-License-Identifier: Apache-2.0
//
// FileHook: a look into init while it loads. The programs that link FileHook.cpp construct the
// paths of files with it and not with the library: each time, before the file is opened, the hook
// in force is called with the file's name. It may throw, as a failing file layer would.
#pragma once

#include <functional>
#include <string>

namespace Quorvane::Testing {

class FileHook {
  public:
    using Hook = std::function<void(std::string const& name)>;

    // In force as long as the object lives; one at a time.
    explicit FileHook(Hook hook);
    FileHook(FileHook const&) = delete;
    FileHook& operator=(FileHook const&) = delete;
    ~FileHook();
};

} // namespace Quorvane::Testing
