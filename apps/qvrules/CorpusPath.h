// SPDX-License-Identifier: Apache-2.0
//
// "[CORPUS=]PATH" on a command line: mail, and the name of the corpus that it belongs to. Pure.
#pragma once

#include <string>

namespace Quorvane::RulesApp {

struct CorpusPath {
    std::string m_corpus;
    std::string m_path;
};

// The name is what stands before the first '=', when there is no '/' in it. Otherwise it is the
// name of the folder that the path lies in: ham and spam of one site usually lie side by side. For
// "-" it is "stdin".
CorpusPath readCorpusPath(std::string const& text);

} // namespace Quorvane::RulesApp
