// SPDX-License-Identifier: Apache-2.0
#include "platform/Snapshot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Quorvane::Testing {

namespace {

using Slot = Snapshot<int>;

std::shared_ptr<int const> s_number(int number) {
    return std::make_shared<int const>(number);
}

// Runs something when it is destroyed.
class AtExit {
  public:
    explicit AtExit(std::function<void()> action) : m_action(std::move(action)) {}
    AtExit(AtExit const&) = delete;
    AtExit& operator=(AtExit const&) = delete;
    ~AtExit() { m_action(); }

  private:
    std::function<void()> m_action;
};

} // namespace

TEST(Snapshot, ReadsTheValueInForce) {
    Slot slot(s_number(1));
    EXPECT_EQ(1, *slot.read());
    EXPECT_EQ(1, *slot.read());
    slot.publish(s_number(2));
    EXPECT_EQ(2, *slot.read());
}

TEST(Snapshot, WhoHoldsASupersededValueKeepsIt) {
    Slot slot(s_number(1));
    auto const held = slot.read();
    slot.publish(s_number(2));
    EXPECT_EQ(2, *slot.read());
    EXPECT_EQ(1, *held);
}

TEST(Snapshot, ReadingDoesNotTouchTheCountThatThreadsShare) {
    auto const value = s_number(1);
    Slot slot(value);
    auto const first = slot.read();
    auto const users = value.use_count();
    std::vector<std::shared_ptr<int const>> const more(10, slot.read());
    EXPECT_EQ(users, value.use_count());
    EXPECT_EQ(value.get(), more.back().get());
}

TEST(Snapshot, EachThreadCountsForItself) {
    Slot slot(s_number(1));
    auto const mine = slot.read();
    std::shared_ptr<int const> theirs;
    std::thread([&] { theirs = slot.read(); }).join();
    EXPECT_EQ(mine.get(), theirs.get());
    EXPECT_TRUE(mine.owner_before(theirs) || theirs.owner_before(mine));
}

TEST(Snapshot, AThreadLetsASupersededValueGoWhenItNextReads) {
    auto value = s_number(1);
    std::weak_ptr<int const> const observer = value;
    Slot slot(std::move(value));
    slot.read();
    slot.publish(s_number(2));
    EXPECT_FALSE(observer.expired());
    slot.read();
    EXPECT_TRUE(observer.expired());
}

TEST(Snapshot, AThreadThatEndsLetsItsValueGo) {
    auto value = s_number(1);
    std::weak_ptr<int const> const observer = value;
    Slot slot(std::move(value));
    std::thread([&] {
        slot.read();
        slot.publish(s_number(2));
        EXPECT_FALSE(observer.expired());
    }).join();
    EXPECT_TRUE(observer.expired());
}

TEST(Snapshot, CanBeReadWhileTheLastObjectsOfAThreadAreDestroyed) {
    Slot slot(s_number(1));
    int seen = 0;
    std::thread([&] {
        // Made before the thread's cache, so destroyed after it.
        static thread_local AtExit const late([&] { seen = *slot.read(); });
        (void)late;
        slot.read();
        slot.publish(s_number(7));
    }).join();
    EXPECT_EQ(7, seen);
}

TEST(Snapshot, SlotsOfTheSameTypeDoNotMix) {
    Slot one(s_number(1));
    Slot two(s_number(2));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(1, *one.read());
        EXPECT_EQ(2, *two.read());
    }
}

TEST(Snapshot, ASlotAtTheAddressOfADeadOneIsAnother) {
    for (int i = 0; i < 10; ++i) {
        auto const slot = std::make_unique<Slot>(s_number(i));
        EXPECT_EQ(i, *slot->read());
    }
}

TEST(Snapshot, ADyingValueMayReadTheSlot) {
    struct Reader {
        Snapshot<Reader> const* m_slot;
        bool* m_sawAnother;
        ~Reader() {
            if (m_slot != nullptr) {
                *m_sawAnother = m_slot->read().get() != this;
            }
        }
    };
    bool sawAnother = false;
    Snapshot<Reader> slot(std::make_shared<Reader const>(Reader{nullptr, nullptr}));
    auto reader = std::make_shared<Reader>(Reader{nullptr, nullptr});
    reader->m_slot = &slot;
    reader->m_sawAnother = &sawAnother;
    slot.publish(std::move(reader));
    slot.read();
    slot.publish(std::make_shared<Reader const>(Reader{nullptr, nullptr}));
    EXPECT_FALSE(sawAnother);
    slot.read();
    EXPECT_TRUE(sawAnother);
}

TEST(Snapshot, AFormOfItsOwnIsMadeOnceForEachThreadAndValue) {
    static std::atomic<int> made{0};
    made = 0;
    Snapshot<int, long> slot(s_number(5), [](std::shared_ptr<int const> const& value) {
        ++made;
        return static_cast<long>(*value) * 10;
    });
    EXPECT_EQ(50, slot.read());
    EXPECT_EQ(50, slot.read());
    EXPECT_EQ(1, made);
    std::thread([&] { EXPECT_EQ(50, slot.read()); }).join();
    EXPECT_EQ(2, made);
    slot.publish(s_number(6));
    EXPECT_EQ(60, slot.read());
    EXPECT_EQ(3, made);
}

TEST(Snapshot, AfterAFailureToMakeAFormTheNextReadTriesAgain) {
    Snapshot<int, long> slot(s_number(1), [](std::shared_ptr<int const> const& value) {
        if (*value == 2) {
            throw std::runtime_error("no form");
        }
        return static_cast<long>(*value);
    });
    EXPECT_EQ(1, slot.read());
    slot.publish(s_number(2));
    EXPECT_THROW(slot.read(), std::runtime_error);
    EXPECT_THROW(slot.read(), std::runtime_error);
    slot.publish(s_number(3));
    EXPECT_EQ(3, slot.read());
}

TEST(Snapshot, ThreadsNeverSeeAnOlderValueAfterANewerOne) {
    constexpr int last = 2000;
    Slot slot(s_number(0));
    auto const watch = [&] {
        for (int seen = 0; seen < last;) {
            auto const now = *slot.read();
            ASSERT_LE(seen, now);
            seen = now;
        }
    };
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back(watch);
    }
    for (int i = 1; i <= last; ++i) {
        slot.publish(s_number(i));
    }
    for (auto& reader : readers) {
        reader.join();
    }
}

} // namespace Quorvane::Testing
