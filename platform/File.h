// SPDX-License-Identifier: Apache-2.0
//
// The file layer: joined paths and input streams over them.
//
// The engine names its files by fixed absolute paths. A host that keeps them elsewhere (a test, a
// staging area, a chroot built by an installer) names a root folder once, at start, before the
// first Path is made; every absolute path is then looked up below it, like an installer's DESTDIR.
// The default is "/". No environment variable is read.
#pragma once

#include "include2/Export.h"

#include <fstream>
#include <ios>
#include <string>

namespace Quorvane::File {

// Sets the root folder. Call it at start, before other threads use the file layer. Throws an
// Exception of category 3 when `folder` is not an existing directory.
QV_API void setRoot(std::string const& folder);
// The root folder without a trailing slash: "" stands for "/".
QV_API std::string const& root();

// The folder that holds the file `name` of `dir`, below the root folder, once all links are
// followed; empty when there is no such file.
QV_API std::string realFolder(std::string const& dir, std::string const& name);

// A joined path below the root folder. A value: copy freely, share read-only.
class QV_API Path {
  public:
    // `dir` and `name` joined by exactly one "/"; an empty `dir` gives `name` alone.
    Path(std::string const& dir, std::string const& name);

    // There is something of this name, once links are followed.
    bool exists() const;
    // It is a file: no folder, pipe, socket or device.
    bool isRegularFile() const;
    // NUL-terminated; valid as long as this object.
    operator const char*() const { return m_path.c_str(); }

  private:
    std::string m_path;
};

// The standard input file stream over a Path. It is not open when the path is no regular file: a
// pipe would keep whoever reads it waiting, where no signal may reach it.
template<typename CharT>
class basic_ifstream : public std::basic_ifstream<CharT> {
  public:
    // Opens it, or sets failbit.
    explicit basic_ifstream(Path const& path, std::ios_base::openmode mode = std::ios_base::in) {
        if (path.isRegularFile()) {
            this->open(static_cast<char const*>(path), mode);
        } else {
            this->setstate(std::ios_base::failbit);
        }
    }
};

} // namespace Quorvane::File
