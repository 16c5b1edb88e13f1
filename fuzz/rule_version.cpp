// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as the README of a rule folder. Hosts and tools read the same version.
#include "Check.h"
#include "platform/File.h"
#include "rules/format/RuleFiles.h"
#include "rules/model/Readme.h"
#include "scanner/RuleVersion.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

// The root folder of this process, with room for a README.
class Root {
  public:
    Root() { File::setRoot(m_folder.path().string()); }

    void write(std::string_view text) const {
        m_folder.write(std::string(ruleDirectory).substr(1) + '/' + versionFileName, text);
    }

  private:
    Testing::TemporaryFolder m_folder;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Root const s_root;
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    s_root.write(text);
    check(readRuleVersion() == Rules::readmeVersion(text).value_or(noRuleVersion),
          "hosts and tools read the same version");
    return 0;
}
