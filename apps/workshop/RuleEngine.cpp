// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/RuleEngine.h"

#include "apps/workshop/TemporaryRules.h"
#include "include2/DeepHeaderException.h"
#include "platform/File.h"
#include "rules/model/RuleError.h"

namespace Quorvane::Workshop {

namespace {

// The engine reads below the file layer's root, which is the process's: moved, and moved back.
class MovedRoot {
  public:
    explicit MovedRoot(std::string const& folder)
        : m_before(File::root().empty() ? "/" : File::root()) {
        File::setRoot(folder);
    }
    MovedRoot(MovedRoot const&) = delete;
    MovedRoot& operator=(MovedRoot const&) = delete;
    ~MovedRoot() {
        try {
            File::setRoot(m_before);
        } catch (Exception const&) {
            // It was a temporary folder too and is gone: nobody reads there any more.
        }
    }

  private:
    std::string m_before;
};

} // namespace

RefDeepHeaderAdapter loadEngine(Rules::RuleSet const& rules) {
    TemporaryRules const folder(rules);
    MovedRoot const root(folder.root());
    try {
        return RefDeepHeaderAdapter(new DeepHeaderAdapter);
    } catch (Exception const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules,
                               "no host could load these rules: " + error.asString());
    }
}

} // namespace Quorvane::Workshop
