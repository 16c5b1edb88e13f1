// SPDX-License-Identifier: Apache-2.0
//
// Runs the built qvscan over a small rule set and messages in a folder of the test.
#pragma once

#include "rules/model/RuleNames.h"
#include "support/JsonLines.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Quorvane::Testing {

using Arguments = std::vector<std::string>;

// Begins a message in an mbox.
inline constexpr char separator[] = "From x@example.invalid Mon Jan  1 00:00:00 2024\n";

// A hop as Postfix writes it.
std::string hop(std::string const& helo, std::string const& reverse, std::string const& address,
                std::string const& by = "mx.example.org");

class ScanTest : public testing::Test {
  protected:
    // The rules: at the tree's root, a first hop with a dynamic reverse name leads to node 3 (0.99
    // spam), one without to node 4 (0.02), any other to node 5 (0.5). Elite rule 'a' adds 0.01 when
    // the trail goes on after the first hop; elite rule 901 (level 2) decides on status_indicated.
    ScanTest();

    using Kind = Rules::RuleKey::Kind;
    // Puts these names, or this text in their place, beside the rules.
    void writeNames(Rules::RuleNames const& names) const;
    void writeNamesFile(std::string const& text) const;

    // With --root, DNS off and --format json; these may be overridden by `arguments`.
    ProgramResult scan(Arguments const& arguments, std::string const& input = {}) const;
    // The most memory that a scan of the file needs, once it has given the last record, whose
    // source ends in `last`.
    long peakKilobytes(std::string const& path, std::string const& last,
                       std::string const& jobs) const;
    // Just the arguments.
    static ProgramResult run(Arguments const& arguments, std::string const& input = {});

    // The records that were written, one for each line.
    static std::vector<Json> records(ProgramResult const& result);
    // "source verdict" of each record.
    static Arguments summary(ProgramResult const& result);
    // The one record of a scan with --explain.
    Json explained(Arguments arguments, std::string const& input) const;

    std::string root() const { return m_folder.path() / "root"; }

    // First hops with a dynamic, without, and with another reverse name.
    static std::string spam();
    static std::string none();
    static std::string ham();

    // What cannot be packed well, so that a part of the packed form is a part of the text.
    static std::string noise(std::uint32_t number = 1);

    TemporaryFolder m_folder;
};

} // namespace Quorvane::Testing
