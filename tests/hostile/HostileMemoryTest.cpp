// SPDX-License-Identifier: Apache-2.0
//
// What a scan of a hostile header section takes of memory, as a multiple of its bytes.
#include "DeepHeaderEngine.h"
#include "hostile/Shapes.h"
#include "support/OwnMemory.h"
#include "support/RuleFolder.h"

#include <cctype>
#include <gtest/gtest.h>
#include <sstream>

namespace Quorvane::Testing {
namespace {

constexpr std::size_t megabyte = std::size_t{1} << 20;
// Besides the text: a field, a hop, and the entry of a score.
constexpr std::size_t bytesForField = 256;
constexpr std::size_t bytesForHop = 1024;
constexpr std::size_t most = 8;                       // times the input
constexpr std::size_t start = std::size_t{256} << 10; // whatever the input is

DeepHeaderEngine s_engine() {
    std::istringstream tree(treeBytes(treeOf({leaf(0, 0, 0.9), leaf(0, 1, 0.9)})));
    return DeepHeaderEngine::fromStreams(tree, nullptr);
}

class HostileMemoryTest : public testing::TestWithParam<Shape> {};

TEST_P(HostileMemoryTest, IsASmallMultipleOfTheInput) {
    auto const engine = s_engine();
    PeakMemory const peak;
    auto message = hostileMessage(GetParam(), megabyte);
    auto query = message.query();
    auto const record = engine.scan(query, RecordDepth::result);
    EXPECT_FALSE(record.failure);
    auto const fields = message.m_headers.headers().size();
    auto const hops = static_cast<std::size_t>(record.hopCount);
    EXPECT_LE(peak.bytes(), start + most * megabyte + fields * bytesForField + hops * bytesForHop);
}

std::string s_nameOf(testing::TestParamInfo<Shape> const& info) {
    std::string name = info.param.m_name;
    for (auto& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Shapes, HostileMemoryTest, testing::ValuesIn(hostileShapes()), s_nameOf);

} // namespace
} // namespace Quorvane::Testing
