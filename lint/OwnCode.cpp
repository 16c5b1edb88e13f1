// SPDX-License-Identifier: Apache-2.0
//
// A plugin of clang-tidy: its check "qv-own-code" hides the declarations of system headers from all
// other checks. They would look at them, find nothing that is ours, and take three quarters of the
// time for it.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>

#include <vector>

namespace {

using namespace clang;

class OwnCode : public tidy::ClangTidyCheck {
  public:
    using ClangTidyCheck::ClangTidyCheck;

    void registerMatchers(ast_matchers::MatchFinder* finder) override {
        finder->addMatcher(ast_matchers::translationUnitDecl(), this);
    }

    // The translation unit is matched before what is in it.
    void check(const ast_matchers::MatchFinder::MatchResult& match) override {
        std::vector<Decl*> own;
        for (auto* declaration : match.Context->getTranslationUnitDecl()->decls()) {
            if (!match.SourceManager->isInSystemHeader(declaration->getLocation())) {
                own.push_back(declaration);
            }
        }
        match.Context->setTraversalScope(own);
    }
};

class Module : public tidy::ClangTidyModule {
  public:
    void addCheckFactories(tidy::ClangTidyCheckFactories& factories) override {
        factories.registerCheck<OwnCode>("qv-own-code");
    }
};

const tidy::ClangTidyModuleRegistry::Add<Module> s_module("qv", "Looks at our own code only.");

} // namespace
