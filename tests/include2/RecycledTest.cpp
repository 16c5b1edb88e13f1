// SPDX-License-Identifier: Apache-2.0
#include "include2/Recycled.h"

#include "support/OwnMemory.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <pthread.h>
#include <thread>
#include <vector>

namespace Quorvane::Testing {
namespace {

template<std::size_t size>
struct Object : Recycled {
    std::array<char, size> m_bytes{};
};

using Small = Object<100>;
constexpr std::size_t sizeOfSmall = 112; // in whole steps

std::vector<std::unique_ptr<Small>> s_make(int count) {
    std::vector<std::unique_ptr<Small>> objects;
    for (int i = 0; i < count; ++i) {
        objects.push_back(std::make_unique<Small>());
    }
    return objects;
}

class RecycledTest : public testing::Test {
  protected:
    void SetUp() override {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "AddressSanitizer is to see each object end, so nothing is kept";
#endif
    }
};

TEST_F(RecycledTest, TheNextObjectOfAboutTheSameSizeTakesTheMemoryOfTheLast) {
    std::thread([] {
        auto first = std::make_unique<Object<100>>();
        auto const place = reinterpret_cast<std::uintptr_t>(first.get());
        first.reset();
        auto const other = std::make_unique<Object<120>>();
        auto const second = std::make_unique<Object<97>>();
        EXPECT_NE(reinterpret_cast<std::uintptr_t>(other.get()), place);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(second.get()), place);
    }).join();
}

TEST_F(RecycledTest, AThreadKeepsABoundedNumberOfBlocksUntilItEnds) {
    auto const before = memoryInUse();
    std::size_t kept = 0;
    std::thread([&] {
        s_make(1);
        auto const start = memoryInUse();
        s_make(1000);
        kept = memoryInUse() - start;
    }).join();
    EXPECT_GE(kept, 60 * sizeOfSmall);
    EXPECT_LE(kept, 70 * sizeOfSmall);
    EXPECT_EQ(memoryInUse(), before);
}

TEST_F(RecycledTest, LargeObjectsAreNotKept) {
    auto const before = memoryInUse();
    std::make_unique<Object<513>>();
    EXPECT_EQ(memoryInUse(), before);
}

// What a thread of a host destroys while it ends, after its blocks have gone: keys are destroyed in
// the order in which they were made.
TEST_F(RecycledTest, ObjectsMayEndAfterTheThreadHasGivenItsBlocksBack) {
    s_make(1);
    pthread_key_t key{};
    auto const destroy = [](void* objects) {
        delete static_cast<std::vector<std::unique_ptr<Small>>*>(objects);
    };
    ASSERT_EQ(pthread_key_create(&key, destroy), 0);
    auto const before = memoryInUse();
    std::thread([&] {
        s_make(10);
        auto late = std::make_unique<std::vector<std::unique_ptr<Small>>>(s_make(10));
        if (pthread_setspecific(key, late.get()) == 0) {
            static_cast<void>(late.release());
        }
    }).join();
    EXPECT_EQ(memoryInUse(), before);
    pthread_key_delete(key);
}

// Without memory nothing is kept, and nothing else happens.
TEST_F(RecycledTest, ABlockThatIsGivenBackNeedsNoMemory) {
    int const failed = failEachAllocation(
        [] {
            try {
                s_make(1);
            } catch (std::bad_alloc const&) { // for the list or for the object
            }
        },
        [](int) {});
    EXPECT_EQ(failed, 3); // the list, the object, what a thread keeps
}

TEST_F(RecycledTest, ObjectsMayEndOnAnotherThreadThanTheyBeganOn) {
    auto const before = memoryInUse();
    for (int round = 0; round < 100; ++round) {
        std::vector<std::unique_ptr<Small>> objects;
        std::thread([&] { objects = s_make(100); }).join();
        std::thread([&] { objects.clear(); }).join();
    }
    EXPECT_EQ(memoryInUse(), before);
}

} // namespace
} // namespace Quorvane::Testing
