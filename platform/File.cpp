// SPDX-License-Identifier: Apache-2.0
#include "platform/File.h"

#include "include2/Exception.h"

#include <filesystem>

namespace Quorvane::File {

namespace {

// Never destroyed: rules may still be loaded while the process ends.
std::string& s_root() {
    static auto* const root = new std::string;
    return *root;
}

std::string s_withoutTrailingSlashes(std::string text) {
    while (!text.empty() && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

std::string s_join(std::string const& dir, std::string const& name) {
    if (dir.empty()) {
        return name;
    }
    return dir.back() == '/' ? dir + name : dir + '/' + name;
}

} // namespace

void setRoot(std::string const& folder) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        throw Exception("root folder \"" + folder + "\" is not an existing directory", 3, nullptr,
                        0);
    }
    s_root() = s_withoutTrailingSlashes(folder);
}

std::string const& root() {
    return s_root();
}

Path::Path(std::string const& dir, std::string const& name) : m_path(s_join(dir, name)) {
    if (m_path.compare(0, 1, "/") == 0) {
        m_path.insert(0, root());
    }
}

bool Path::exists() const {
    std::error_code error;
    return std::filesystem::exists(m_path, error);
}

} // namespace Quorvane::File
