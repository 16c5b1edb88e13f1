// SPDX-License-Identifier: Apache-2.0
#include "FileHook.h"

#include "platform/File.h"

#include <utility>

namespace Quorvane {
namespace Testing {
namespace {

FileHook::Hook& s_hook() {
    static FileHook::Hook hook;
    return hook;
}

} // namespace

FileHook::FileHook(Hook hook) {
    s_hook() = std::move(hook);
}

FileHook::~FileHook() {
    s_hook() = nullptr;
}

} // namespace Testing

// The linker takes this one for the one of the shared library. The engine's folders are absolute
// and end in no slash.
File::Path::Path(std::string const& dir, std::string const& name)
    : m_path(root() + dir + '/' + name) {
    if (Testing::s_hook()) {
        Testing::s_hook()(name);
    }
}

} // namespace Quorvane
