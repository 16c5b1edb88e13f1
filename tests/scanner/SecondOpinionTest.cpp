// SPDX-License-Identifier: Apache-2.0
//
// The engine and a second, plain opinion agree: on random rules and vectors, and on what random
// trails look like. The environment variable QV_COMPARISONS sets how many vectors are compared.
#include "platform/Resolver.h"
#include "rules/format/AttributeTable.h"
#include "rules/format/RuleFiles.h"
#include "support/Agreement.h"
#include "support/Message.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace Quorvane::Testing {
namespace {

constexpr int usualComparisons = 200'000;
constexpr int vectorsForEachSet = 40;
constexpr int trails = 5'000;

class Dice {
  public:
    // Half of all dice throw ordinary values only: any odd one can keep a whole tree from loading.
    explicit Dice(std::uint64_t seed) : m_engine(seed), m_isOrdinary(oneIn(2)) {}

    // Below `end`.
    std::int32_t below(std::int32_t end) {
        return std::uniform_int_distribution<std::int32_t>(0, end - 1)(m_engine);
    }
    bool oneIn(std::int32_t count) { return below(count) == 0; }
    bool isOdd(std::int32_t oneInCount) { return !m_isOrdinary && oneIn(oneInCount); }

    template<typename Value>
    Value oneOf(std::initializer_list<Value> values) {
        return values.begin()[below(static_cast<std::int32_t>(values.size()))];
    }

  private:
    std::mt19937_64 m_engine;
    bool m_isOrdinary;
};

void s_put(std::string& bytes, std::int32_t value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

void s_put(std::string& bytes, double value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

// Few attributes and few values, so that tests often hold; now and then one that is not there.
std::int32_t s_attribute(Dice& dice) {
    return dice.isOdd(60) ? dice.oneOf({-1, 37, 38, std::numeric_limits<std::int32_t>::min()})
                          : dice.below(5);
}

std::int32_t s_test(Dice& dice) {
    return dice.isOdd(60) ? dice.oneOf({-1, 2, 5}) : dice.below(2);
}

double s_share(Dice& dice) {
    return dice.isOdd(25) ? dice.oneOf({std::numeric_limits<double>::quiet_NaN(), -0.0, -1.0,
                                        std::numeric_limits<double>::infinity(), 1e300})
                          : dice.oneOf({0.0, 0.05, 0.1, 0.5, 0.9, 0.95, 1.0});
}

std::int32_t s_child(Dice& dice, std::int32_t node, std::int32_t count) {
    if (dice.isOdd(60)) {
        return dice.oneOf({-1, 0, 1, 2, count, 499, 500, node});
    }
    return node + 1 < count ? node + 1 + dice.below(count - node - 1) : node;
}

std::string s_node(Dice& dice, std::int32_t node, std::int32_t count) {
    std::string bytes;
    s_put(bytes, node <= 2 ? dice.below(99) : s_attribute(dice));
    s_put(bytes, s_test(dice));
    s_put(bytes, dice.below(3));
    s_put(bytes, dice.oneIn(2) ? dice.oneOf({1, 7, 256}) : 0);
    s_put(bytes, dice.below(2));
    auto const children = dice.isOdd(60) ? dice.oneOf({-1, 10, 11}) : 1 + dice.below(4);
    for (int slot = 0; slot < 10; ++slot) {
        s_put(bytes, slot < children ? s_child(dice, node, count) : 0);
    }
    s_put(bytes, children);
    s_put(bytes, dice.isOdd(300) ? dice.below(2) - 1 : 10);
    s_put(bytes, 5);
    s_put(bytes, 5);
    s_put(bytes, s_share(dice));
    s_put(bytes, dice.oneIn(8) ? s_share(dice) : 50.0);
    return bytes;
}

std::string s_tree(Dice& dice) {
    auto const count = dice.isOdd(200) ? dice.oneOf({0, 1, 2, 3, 499, 500}) : 3 + dice.below(20);
    std::string bytes;
    for (std::int32_t node = 0; node < count; ++node) {
        bytes += s_node(dice, node, count);
    }
    return dice.oneIn(20) ? bytes.substr(0, bytes.size() - std::min<std::size_t>(bytes.size(), 50))
                          : bytes;
}

std::string s_rule(Dice& dice) {
    std::string bytes;
    s_put(bytes, dice.isOdd(10) ? dice.oneOf({0, -1, 0x141}) : 'a' + dice.below(26));
    s_put(bytes, dice.oneIn(3) ? s_share(dice) : dice.oneOf({0.01, -0.02, 0.6, 0.97}));
    s_put(bytes, s_share(dice));
    s_put(bytes, dice.isOdd(30) ? 2 : dice.below(2));
    s_put(bytes, dice.oneIn(20) ? dice.oneOf({0, 3, -1}) : 1 + dice.below(2));
    s_put(bytes, dice.below(3));
    s_put(bytes, 0);
    auto const tests = dice.isOdd(60) ? dice.oneOf({-3, 100, 101}) : dice.below(4);
    s_put(bytes, tests);
    for (int i = 0; i < tests && i < 100; ++i) {
        s_put(bytes, s_attribute(dice));
        s_put(bytes, s_test(dice));
        s_put(bytes, dice.below(3));
    }
    return bytes;
}

std::string s_elite(Dice& dice) {
    if (dice.oneIn(4)) {
        return {};
    }
    std::string rules;
    auto const count = dice.below(8);
    for (int i = 0; i < count; ++i) {
        rules += s_rule(dice);
    }
    std::string bytes;
    s_put(bytes, 0);
    s_put(bytes, dice.oneIn(20) ? dice.oneOf({-1, 2, 100'000}) : count);
    s_put(bytes, 0);
    s_put(bytes, dice.isOdd(10) ? dice.oneOf({0, 5}) : 1 + dice.below(4));
    s_put(bytes, dice.oneIn(5) ? dice.below(3) : 1);
    bytes.append(12, '\0');
    bytes += rules;
    return dice.oneIn(20) ? bytes.substr(0, bytes.size() - std::min<std::size_t>(bytes.size(), 7))
                          : bytes;
}

PlainSettings s_settings(Dice& dice) {
    PlainSettings settings;
    settings.m_isWalkToLeaf = dice.oneIn(2);
    settings.m_spamThreshold = dice.oneOf({0.5, 0.9, 0.95, 0.95, 94.9, 95.0});
    settings.m_hamThreshold = dice.oneOf({0.5, 0.9, 0.95});
    settings.m_minSupport = dice.oneOf({0.0, 0.05, 0.15, 0.5});
    settings.m_maxEliteLevel = dice.below(3);
    return settings;
}

PlainRules::Vector s_vector(Dice& dice) {
    PlainRules::Vector vector{};
    for (auto& value : vector) {
        value = dice.below(3);
    }
    return vector;
}

struct Done {
    int m_compared = 0;
    int m_decided = 0; // by any rule
};

// Both opinions on random vectors.
void s_compareSet(Dice& dice, std::string const& tree, std::string const& elite, Done& done) {
    PlainRules const plain(tree, elite);
    auto const engine = engineOf(tree, elite);
    EXPECT_EQ(engine.has_value(), plain.isLoaded());
    for (int i = 0; engine && i < vectorsForEachSet; ++i) {
        auto const vector = s_vector(dice);
        auto const settings = s_settings(dice);
        auto const verdict = plain.judge(vector, settings);
        auto const record = engine->judge(vector, engineSettings(settings), RecordDepth::result);
        EXPECT_EQ(picture(record), picture(verdict));
        ++done.m_compared;
        done.m_decided += verdict.m_node != 0 ? 1 : 0;
    }
}

int s_comparisons() {
    auto const* const text = std::getenv("QV_COMPARISONS");
    return text == nullptr ? usualComparisons : std::atoi(text);
}

TEST(SecondOpinionTest, RulesMeanTheSameToTheEngine) {
    Done done;
    auto const comparisons = s_comparisons();
    for (std::uint64_t set = 0; done.m_compared < comparisons && !HasFailure(); ++set) {
        SCOPED_TRACE("set " + std::to_string(set));
        Dice dice(set);
        auto const tree = s_tree(dice);
        s_compareSet(dice, tree, s_elite(dice), done);
    }
    EXPECT_GT(done.m_decided, done.m_compared / 6) << "too few verdicts to say anything";
}

// --- trails -------------------------------------------------------------------------------------

enum class HopKind { publicAddress, privateAddress, noAddress };

struct PlainHop {
    HopKind m_kind;
    std::string m_from;
    std::string m_by;
    std::string m_address; // of a public hop
};

// What there is to say of a trail, newest hop first, by looking at it as a whole.
struct PlainTrail {
    explicit PlainTrail(std::vector<PlainHop> const& hops) {
        std::vector<std::size_t> firstRun;
        bool isInFirstRun = true;
        int privateRun = 0;
        bool isAfterPublic = false; // the last hop with an address was public
        for (std::size_t i = 0; i < hops.size(); ++i) {
            auto const kind = hops[i].m_kind;
            if (m_first && hops[i].m_by != hops[i - 1].m_from) {
                m_isBroken = true;
            }
            if (kind == HopKind::noAddress) {
                ++m_noAddressHops;
                isInFirstRun = isInFirstRun && !isAfterPublic;
            } else if (kind == HopKind::privateAddress) {
                // Hops without address do not interrupt a run.
                privateRun = isAfterPublic || privateRun == 0 ? 1 : privateRun + 1;
                m_maxPrivateRun = std::max(m_maxPrivateRun, privateRun);
                isInFirstRun = isInFirstRun && !isAfterPublic;
                isAfterPublic = false;
            } else {
                m_publicRun = isAfterPublic ? m_publicRun + 1 : 1;
                isAfterPublic = true;
                if (isInFirstRun) {
                    firstRun.push_back(i);
                }
                m_first = m_first ? m_first : i;
            }
        }
        m_hasHopBehindFirst = m_first && *m_first + 1 < hops.size();
        if (!firstRun.empty()) {
            m_slots[0] = hops[firstRun.front()].m_address;
        }
        if (firstRun.size() > 1) {
            m_slots[1] = hops[firstRun.back()].m_address;
        }
        if (firstRun.size() > 2) {
            m_slots[2] = hops[firstRun[firstRun.size() - 2]].m_address;
        }
    }

    std::optional<std::size_t> m_first; // the first public hop
    int m_maxPrivateRun = 0;
    int m_publicRun = 0; // the last one
    int m_noAddressHops = 0;
    bool m_isBroken = false;
    bool m_hasHopBehindFirst = false;
    std::array<std::string, 3> m_slots;
};

std::vector<PlainHop> s_hops(Dice& dice) {
    std::vector<PlainHop> hops;
    auto const count = dice.below(12);
    std::string by = "mx.site.example";
    for (int i = 0; i < count; ++i) {
        auto const name = "h" + std::to_string(i) + ".example";
        auto const kind = dice.oneOf({HopKind::publicAddress, HopKind::publicAddress,
                                      HopKind::privateAddress, HopKind::noAddress});
        hops.push_back({kind, name, dice.oneIn(20) ? "elsewhere.example" : by,
                        "192.0.2." + std::to_string(i + 1)});
        by = name;
    }
    return hops;
}

std::string s_headers(std::vector<PlainHop> const& hops) {
    std::string headers;
    for (auto const& hop : hops) {
        if (hop.m_kind == HopKind::noAddress) {
            headers +=
                "Received: from " + hop.m_from + " (" + hop.m_from + ") by " + hop.m_by + "\n";
        } else {
            headers += received(hop.m_from, hop.m_from,
                                hop.m_kind == HopKind::publicAddress ? hop.m_address : "10.0.0.1",
                                hop.m_by);
        }
    }
    return headers;
}

void s_expectTrail(ScanRecord const& record, std::vector<PlainHop> const& hops) {
    PlainTrail const plain(hops);
    EXPECT_FALSE(record.failure);
    EXPECT_EQ(record.isJudged(), plain.m_first.has_value());
    EXPECT_EQ(record.hopCount, static_cast<int>(hops.size()));
    EXPECT_EQ(record.maxPrivateRun, plain.m_maxPrivateRun);
    EXPECT_EQ(record.publicRun, plain.m_publicRun);
    EXPECT_EQ(record.noAddressHops, plain.m_noAddressHops);
    EXPECT_EQ(record.attributes[Attribute::chainBroken], plain.m_isBroken ? 1 : 0);
    EXPECT_EQ(record.attributes[Attribute::hopBehindFirst], plain.m_hasHopBehindFirst ? 1 : 0);
    for (std::size_t slot = 0; slot < plain.m_slots.size(); ++slot) {
        EXPECT_EQ(record.receivers[slot].ip, plain.m_slots[slot]) << "slot " << slot;
    }
}

TEST(SecondOpinionTest, TrailsLookTheSameToTheEngine) {
    ResolverSettings noLookups;
    noLookups.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(noLookups);
    auto const engine = engineOf("", "");
    ASSERT_TRUE(engine);
    for (int trail = 0; trail < trails && !HasFailure(); ++trail) {
        Dice dice(static_cast<std::uint64_t>(trail));
        auto const hops = s_hops(dice);
        auto const headers = s_headers(hops);
        SCOPED_TRACE(headers);
        auto query = Message(headers).query();
        s_expectTrail(engine->scan(query, RecordDepth::steps), hops);
    }
}

} // namespace
} // namespace Quorvane::Testing
