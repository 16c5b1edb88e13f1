// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/CorpusPath.h"

#include <filesystem>

namespace Quorvane::RulesApp {

namespace {

std::string s_folderOf(std::string const& path) {
    if (path == "-") {
        return "stdin";
    }
    auto whole = std::filesystem::absolute(path).lexically_normal();
    if (!whole.has_filename()) {
        whole = whole.parent_path(); // it ended in a slash
    }
    return whole.parent_path().filename().string();
}

} // namespace

CorpusPath readCorpusPath(std::string const& text) {
    auto const equals = text.find('=');
    if (equals != std::string::npos && equals > 0 && text.find('/') > equals) {
        return {text.substr(0, equals), text.substr(equals + 1)};
    }
    return {s_folderOf(text), text};
}

} // namespace Quorvane::RulesApp
