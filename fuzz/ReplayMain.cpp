// SPDX-License-Identifier: Apache-2.0
//
// Replaces libFuzzer's main: feeds the files named on the command line, and those of the
// folders named there, to the fuzz target, once each.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);
// Only some targets have to prepare something.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

// The block has the exact size of the input: a sanitizer sees a read one byte too far.
void s_replay(std::filesystem::path const& file) {
    std::ifstream in(file, std::ios::binary);
    in.exceptions(std::ios::badbit | std::ios::failbit);
    std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
    bytes.shrink_to_fit();
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

int s_replayAll(std::filesystem::path const& place) {
    if (!std::filesystem::is_directory(place)) {
        s_replay(place);
        return 1;
    }
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(place)) {
        if (entry.is_regular_file()) {
            s_replay(entry.path());
            ++count;
        }
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize != nullptr) {
        LLVMFuzzerInitialize(&argc, &argv);
    }
    int count = 0;
    try {
        for (int i = 1; i < argc; ++i) {
            count += s_replayAll(argv[i]);
        }
    } catch (std::exception const& error) {
        std::fprintf(stderr, "replay: %s\n", error.what());
        return 1;
    }
    std::printf("replayed %d inputs\n", count);
    return count > 0 ? 0 : 1;
}
