// SPDX-License-Identifier: Apache-2.0
//
// Scans each hostile shape in two sizes, the second twice the first, and marks each scan for
// callgrind, which counts the instructions.
#include "DeepHeaderEngine.h"
#include "hostile/Shapes.h"
#include "support/RuleFolder.h"

#include <sstream>
#include <string>
#include <valgrind/callgrind.h>

using namespace Quorvane;
using namespace Quorvane::Testing;

namespace {

constexpr std::size_t size = std::size_t{16} << 10;

void s_scan(DeepHeaderEngine const& engine, std::string const& text, Shape const& shape,
            std::size_t bytes, std::string const& mark) {
    auto message = hostileMessage(shape, bytes);
    auto query = message.query();
    CALLGRIND_ZERO_STATS;
    engine.scan(query, RecordDepth::result);
    HeaderReader::read(text);
    CALLGRIND_DUMP_STATS_AT(mark.c_str());
}

} // namespace

int main() {
    std::istringstream tree(treeBytes(treeOf({leaf(0, 0, 0.9), leaf(0, 1, 0.9)})));
    auto const engine = DeepHeaderEngine::fromStreams(tree, nullptr);
    s_scan(engine, {}, hostileShapes().front(), 1, "start"); // what only the first scan does
    for (auto const& shape : hostileShapes()) {
        for (int const times : {1, 2}) {
            auto const bytes = size * static_cast<std::size_t>(times);
            s_scan(engine, shape.m_text(bytes), shape, bytes,
                   std::string(shape.m_name) + "/" + std::to_string(times));
        }
    }
}
