// SPDX-License-Identifier: Apache-2.0
//
// Golden files: the expected text of something large, kept in the repository beside its test.
// `./dev test --approve` sets QV_APPROVE and runs the tests with the ctest label "golden": they
// then write what they got instead of comparing, for review with git diff.
#pragma once

#include "support/ReadFile.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace Quorvane::Testing {

inline bool isApproving() {
    return std::getenv("QV_APPROVE") != nullptr;
}

// Compares `text` with the file, or writes it there.
inline void expectGolden(std::string const& file, std::string const& text) {
    if (isApproving()) {
        std::ofstream out(file, std::ios::binary);
        out << text;
        ASSERT_TRUE(out.flush()) << "cannot write " << file;
        return;
    }
    EXPECT_EQ(text, readFile(file))
        << "differs from " << file << "; ./dev test --approve rewrites it";
}

} // namespace Quorvane::Testing
