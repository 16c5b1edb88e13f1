// SPDX-License-Identifier: Apache-2.0
//
// Tells whether a host name belongs to a dynamically addressed machine (dial-up, cable, DSL pools)
// or to one that somebody named. A list of regular expressions (RE2 syntax) decides: a name is
// dynamic when a pattern matches anywhere in it and no counter-pattern does.
//
// A DynamicIdentifier never changes: share it read-only between threads. The process-wide one can
// be replaced at any time; scans that hold the old one finish with it.
#pragma once

#include "include2/Export.h"

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>

namespace Telvanis {

class QV_API DynamicIdentifier {
  public:
    // One regular expression a line, matched anywhere in the lower-cased name, byte by byte. "#"
    // starts a comment; blanks around an expression and empty lines are skipped; a leading "!"
    // makes a counter-pattern. `sourceName` is shown in errors: an Exception of category 3 with
    // file, line and what is wrong.
    static boost::shared_ptr<DynamicIdentifier> compile(std::string const& patterns,
                                                        std::string const& sourceName);
    // The same from a file.
    static boost::shared_ptr<DynamicIdentifier> load(std::string const& path);
    // The built-in list (data/dynamic-patterns.txt).
    static boost::shared_ptr<DynamicIdentifier> builtIn();

    DynamicIdentifier(DynamicIdentifier const&) = delete;
    DynamicIdentifier& operator=(DynamicIdentifier const&) = delete;
    ~DynamicIdentifier();

    // Letter case and one trailing dot make no difference; a byte of any value is a character.
    bool match(std::string const& name) const;

  private:
    struct Patterns;
    explicit DynamicIdentifier(std::unique_ptr<Patterns const> patterns);

    std::unique_ptr<Patterns const> m_patterns;
};

// The process-wide identifier. Safe from many threads.
class QV_API DynamicIdentifierSingleton {
  public:
    // The identifier in force; never empty. The built-in list until another one is installed.
    // `reload` is there for hosts whose list has a source of its own; this one has none and ignores
    // it. Each thread counts on a line of its own.
    static boost::shared_ptr<DynamicIdentifier> instance(bool reload);

    // Puts another list in force. An Exception of category 3 when `identifier` is empty.
    static void install(boost::shared_ptr<DynamicIdentifier> const& identifier);
};

} // namespace Telvanis
