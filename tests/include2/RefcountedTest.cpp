// SPDX-License-Identifier: Apache-2.0
#include "include2/QvaneRefcounted.h"

#include "support/ReferenceWitness.h"
#include "support/VirtualSlot.h"

#include <array>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <rapidcheck/gtest.h>
#include <thread>
#include <vector>

namespace Quorvane::Testing {
namespace {

// Counts its own destructions; once with a virtual counted base, once with a plain one.
struct VirtualImpl : virtual RefImpl {
    explicit VirtualImpl(int* deaths = nullptr) : m_deaths(deaths) {}
    ~VirtualImpl() override {
        if (m_deaths != nullptr) {
            ++*m_deaths;
        }
    }
    int m_padding = 0;
    int* m_deaths;
};

struct PlainImpl : RefImpl {
    explicit PlainImpl(int* deaths = nullptr) : m_deaths(deaths) {}
    ~PlainImpl() override {
        if (m_deaths != nullptr) {
            ++*m_deaths;
        }
    }
    int* m_deaths;
};

template<typename T>
class Handle : public Ref<T> {
  public:
    Handle() = default;
    explicit Handle(T* impl) : Ref<T>(new RefCounted<T>(impl, false)) {}
};

template<typename T>
class RefcountedTest : public testing::Test {};
using Impls = testing::Types<VirtualImpl, PlainImpl>;
TYPED_TEST_SUITE(RefcountedTest, Impls);

TYPED_TEST(RefcountedTest, NewImplementationIsDestroyedExactlyOnce) {
    int deaths = 0;
    auto* const wrapper = new RefCounted<TypeParam>(new TypeParam(&deaths), false);
    EXPECT_EQ(wrapper->impl()->references(), 1);
    delete wrapper;
    EXPECT_EQ(deaths, 1);
}

TYPED_TEST(RefcountedTest, DefaultWrapperHoldsAFreshImplementation) {
    RefCounted<TypeParam> const wrapper;
    ASSERT_NE(wrapper.impl(), nullptr);
    EXPECT_EQ(wrapper.impl()->references(), 1);
}

TYPED_TEST(RefcountedTest, CountedWrapperAddsOneReference) {
    RefCounted<TypeParam> const first;
    {
        RefCounted<TypeParam> const second(first.impl(), true);
        EXPECT_EQ(first.impl()->references(), 2);
    }
    EXPECT_EQ(first.impl()->references(), 1);
}

TYPED_TEST(RefcountedTest, CopiedHandlesShareOneImplementationUntilTheLastDies) {
    int deaths = 0;
    {
        Handle<TypeParam> survivor;
        {
            Handle<TypeParam> const first(new TypeParam(&deaths));
            survivor = first;
        }
        EXPECT_EQ(deaths, 0);
        EXPECT_EQ(survivor->references(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

TYPED_TEST(RefcountedTest, EitherOfTwoCopiesMayDieFirst) {
    int deaths = 0;
    auto* const first = new Handle<TypeParam>(new TypeParam(&deaths));
    auto* const second = new Handle<TypeParam>(*first);
    delete second;
    EXPECT_EQ((*first)->references(), 1);
    EXPECT_EQ(deaths, 0);
    delete first;
    EXPECT_EQ(deaths, 1);
}

TYPED_TEST(RefcountedTest, ImplCopyWithTargetEqualToSourceLeavesTheCount) {
    auto* wrapper = new RefCounted<TypeParam>;
    RefCountedImplCopy(wrapper, static_cast<RefCounted<TypeParam> const*>(wrapper));
    EXPECT_EQ(wrapper->impl()->references(), 1);
    delete wrapper;
}

TYPED_TEST(RefcountedTest, ImplCopyFromNullSourceReleasesAndEmptiesTheTarget) {
    int deaths = 0;
    auto* target = new RefCounted<TypeParam>(new TypeParam(&deaths), false);
    RefCountedImplCopy(target, static_cast<RefCounted<TypeParam> const*>(nullptr));
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(deaths, 1);
}

TYPED_TEST(RefcountedTest, ImplCopyFromWrapperHoldingNullGivesWrapperHoldingNull) {
    RefCounted<TypeParam> const source(nullptr, false);
    RefCounted<TypeParam>* target = nullptr;
    RefCountedImplCopy(target, &source);
    ASSERT_NE(target, nullptr);
    EXPECT_NE(target, &source);
    EXPECT_EQ(target->impl(), nullptr);
    delete target;
}

TYPED_TEST(RefcountedTest, ImplCopyGivesAWrapperOfItsOwnOverTheSameImplementation) {
    RefCounted<TypeParam> const source;
    auto* target = new RefCounted<TypeParam>;
    RefCountedImplCopy(target, &source);
    EXPECT_NE(target, &source);
    EXPECT_EQ(target->impl(), source.impl());
    EXPECT_EQ(source.impl()->references(), 2);
    delete target;
}

TEST(RefcountedOrderTest, ImplCopyReleasesTheOldReferenceBeforeItTakesTheNew) {
    std::optional<std::int32_t> seen;
    RefCounted<Testing::ReferenceWitness> const source;
    auto* target = new RefCounted<Testing::ReferenceWitness>;
    target->impl()->watch(source.impl(), &seen);
    RefCountedImplCopy(target, &source);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(source.impl()->references(), 2);
    delete target;
}

TYPED_TEST(RefcountedTest, ComparisonIsTheVirtualOperationAfterTheDestructor) {
    EXPECT_EQ(Testing::virtualSlot(&RefCounted<TypeParam>::operator==), 2U);
}

TYPED_TEST(RefcountedTest, WrappersCompareByIdentityNotContent) {
    RefCounted<TypeParam> const first;
    RefCounted<TypeParam> const other;
    RefCounted<TypeParam> const same(first.impl(), true);
    EXPECT_FALSE(first == other);
    EXPECT_TRUE(first == same);
}

TYPED_TEST(RefcountedTest, ArrowOnWrapperHoldingNullGivesNull) {
    Handle<TypeParam> handle(nullptr);
    EXPECT_EQ(handle.operator->(), nullptr);
    EXPECT_EQ(std::as_const(handle).operator->(), nullptr);
}

void s_expectArrowFailure(std::function<void()> const& arrow, unsigned int line) {
    try {
        arrow();
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.stringParameter(), "operator->");
        EXPECT_EQ(exception.intParameter(), 1);
        EXPECT_EQ(exception.fileName(), "include2/QvaneRefcounted");
        EXPECT_EQ(exception.lineNumber(), line);
    }
}

TYPED_TEST(RefcountedTest, ArrowOnEmptyHandleThrowsFromLine359AndConstFrom368) {
    Handle<TypeParam> handle;
    s_expectArrowFailure([&] { handle.operator->(); }, 359);
    s_expectArrowFailure([&] { std::as_const(handle).operator->(); }, 368);
}

TYPED_TEST(RefcountedTest, CountedConstructionOverNullThrowsCategory4WithoutLocation) {
    try {
        RefCounted<TypeParam> const wrapper(nullptr, true);
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.stringParameter(), "RefCounted constructor for RefImpl failed.");
        EXPECT_EQ(exception.intParameter(), 4);
        EXPECT_EQ(exception.fileName(), "");
        EXPECT_EQ(exception.lineNumber(), 0U);
    }
}

TYPED_TEST(RefcountedTest, CopiesOnManyThreadsLeaveOneReference) {
    int deaths = 0;
    {
        Handle<TypeParam> handle(new TypeParam(&deaths));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&handle] {
                for (int j = 0; j < 2000; ++j) {
                    Handle<TypeParam> const copy(handle);
                    Handle<TypeParam> const again(copy);
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(handle->references(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

// Runs `work` on four threads that begin together.
void s_onManyThreads(std::function<void()> const& work) {
    constexpr int threadCount = 4;
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            work();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

// Nothing but counting, so that threads that count in two steps are sure to lose some.
TEST(RefcountedThreadsTest, NoCountIsLostAmongThreads) {
    constexpr int rounds = 3000000;
    RefImpl impl;
    s_onManyThreads([&] {
        for (int i = 0; i < rounds; ++i) {
            impl.addReference();
        }
    });
    EXPECT_EQ(impl.references(), 1 + 4 * rounds);
    std::atomic<int> last{0};
    s_onManyThreads([&] {
        for (int i = 0; i < rounds; ++i) {
            last += impl.dropReference() ? 1 : 0;
        }
    });
    EXPECT_EQ(impl.references(), 1);
    EXPECT_EQ(last, 0);
}

// What two threads wrote before they let go, summed up by the destructor.
struct Notes : virtual RefImpl {
    ~Notes() override { *m_sum = m_notes[0] + m_notes[1]; }
    std::array<int, 2> m_notes{};
    int* m_sum = nullptr;
};

// The thread that lets go last destroys the object, and has to see what the other one wrote. Where
// the count does not order the two, ThreadSanitizer reports it whatever the machine makes of it.
TEST(RefcountedThreadsTest, TheDestructorSeesWhatEveryThreadWroteBeforeItLetGo) {
    int sum = 0;
    auto* const first = new RefCounted<Notes>;
    auto* const second = new RefCounted<Notes>(first->impl(), true);
    first->impl()->m_sum = &sum;
    auto const noteAndLetGo = [](RefCounted<Notes>* wrapper, std::size_t place, int note) {
        wrapper->impl()->m_notes[place] = note;
        delete wrapper;
    };
    std::thread one(noteAndLetGo, first, 0, 1);
    std::thread other(noteAndLetGo, second, 1, 2);
    one.join();
    other.join();
    EXPECT_EQ(sum, 3);
}

// Any sequence of assignments between handles keeps every count equal to the handles that share.
RC_GTEST_PROP(RefcountedPropertyTest, CountAlwaysEqualsTheHandlesThatShare, ()) {
    int deaths = 0;
    constexpr std::size_t handleCount = 5;
    {
        std::vector<Handle<VirtualImpl>> handles;
        std::vector<std::size_t> owner;
        for (std::size_t i = 0; i < handleCount; ++i) {
            handles.emplace_back(new VirtualImpl(&deaths));
            owner.push_back(i);
        }
        auto const moves = *rc::gen::container<std::vector<std::pair<std::size_t, std::size_t>>>(
            rc::gen::pair(rc::gen::inRange<std::size_t>(0, handleCount),
                          rc::gen::inRange<std::size_t>(0, handleCount)));
        for (auto const& [to, from] : moves) {
            handles[to] = handles[from];
            owner[to] = owner[from];
        }
        for (std::size_t i = 0; i < handleCount; ++i) {
            auto const sharing = std::count(owner.begin(), owner.end(), owner[i]);
            RC_ASSERT(handles[i]->references() == sharing);
        }
    }
    RC_ASSERT(deaths == static_cast<int>(handleCount));
}

} // namespace
} // namespace Quorvane::Testing
