// SPDX-License-Identifier: Apache-2.0
//
// RangeTable: values of address ranges, the longest prefix wins. Prefixes are nested or disjoint,
// so they flatten into sorted, disjoint intervals, and a look-up is one binary search. IPv4 and
// IPv6 are kept apart: an interval of 32-bit keys takes a quarter of the memory, and the tables
// that people load hold IPv4 for the most part. Immutable once built: share it read-only.
#pragma once

#include "platform/internal/AddressBits.h"
#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace Quorvane::internal {

// The last 32 bits say it all.
inline std::uint32_t v4Number(IPAddress::Bytes const& bytes) {
    return static_cast<std::uint32_t>(toNumber(bytes));
}

// Key: an unsigned number.
template<typename Key, typename Value>
class FlatRanges {
  public:
    struct Nested {
        Key m_first;
        Key m_last;
        Value m_value;
    };

    // Flattens `ranges`, any two of which are nested, equal or disjoint. Of equal ones the later
    // counts.
    void build(std::vector<Nested> ranges) {
        std::stable_sort(ranges.begin(), ranges.end(), s_before);
        std::vector<Nested> open; // each one inside the one below it
        for (auto const& range : ranges) {
            closeBefore(open, range.m_first);
            if (!open.empty()) {
                emitBefore(range.m_first, open.back().m_value);
            }
            m_next = range.m_first;
            open.push_back(range);
        }
        while (!open.empty()) {
            close(open);
        }
        shrink();
    }

    // Null when no range holds `key`.
    Value const* find(Key key) const {
        auto const above = std::upper_bound(m_first.begin(), m_first.end(), key);
        if (above == m_first.begin()) {
            return nullptr;
        }
        auto const index = static_cast<std::size_t>(above - m_first.begin()) - 1;
        return m_last[index] < key ? nullptr : &m_values[index];
    }

    std::size_t size() const { return m_first.size(); }

  private:
    // Outer ranges before the inner ones that begin with them.
    static bool s_before(Nested const& a, Nested const& b) {
        return std::tie(a.m_first, b.m_last) < std::tie(b.m_first, a.m_last);
    }

    void closeBefore(std::vector<Nested>& open, Key key) {
        while (!open.empty() && open.back().m_last < key) {
            close(open);
        }
    }

    // What is left of the innermost open range. After the highest key nothing is left of any
    // range, and m_next, which has wrapped to 0, means nothing.
    void close(std::vector<Nested>& open) {
        auto const& range = open.back();
        if (!m_exhausted && !(range.m_last < m_next)) {
            emit(m_next, range.m_last, range.m_value);
            m_next = range.m_last + 1;
            m_exhausted = m_next == 0;
        }
        open.pop_back();
    }

    void emitBefore(Key key, Value const& value) {
        if (m_next < key) {
            emit(m_next, key - 1, value);
        }
    }

    // Neighbours with the same value become one interval.
    void emit(Key first, Key last, Value const& value) {
        if (!m_last.empty() && m_last.back() + 1 == first && m_values.back() == value) {
            m_last.back() = last;
            return;
        }
        m_first.push_back(first);
        m_last.push_back(last);
        m_values.push_back(value);
    }

    void shrink() {
        m_first.shrink_to_fit();
        m_last.shrink_to_fit();
        m_values.shrink_to_fit();
    }

    std::vector<Key> m_first;
    std::vector<Key> m_last;
    std::vector<Value> m_values;
    // While building: the first key that no interval covers yet.
    Key m_next{};
    bool m_exhausted = false;
};

template<typename Value>
class RangeTable {
  public:
    using Entry = std::pair<IPPrefix, Value>;

    // Of two entries with the same prefix the later one counts.
    explicit RangeTable(std::vector<Entry> const& entries) {
        std::vector<typename V4::Nested> v4;
        std::vector<typename V6::Nested> v6;
        for (auto const& [prefix, value] : entries) {
            if (prefix.isV6()) {
                v6.push_back({toNumber(prefix.first()), toNumber(prefix.last()), value});
            } else {
                v4.push_back({v4Number(prefix.first()), v4Number(prefix.last()), value});
            }
        }
        m_v4.build(std::move(v4));
        m_v6.build(std::move(v6));
    }

    // Null when no prefix holds the address, and for a null address.
    Value const* find(IPAddress const& address) const {
        if (address.isNull()) {
            return nullptr;
        }
        return address.isV6() ? m_v6.find(toNumber(address.bytes()))
                              : m_v4.find(v4Number(address.bytes()));
    }

    // Number of intervals held.
    std::size_t size() const { return m_v4.size() + m_v6.size(); }

  private:
    using V4 = FlatRanges<std::uint32_t, Value>;
    using V6 = FlatRanges<AddressNumber, Value>;

    V4 m_v4;
    V6 m_v6;
};

} // namespace Quorvane::internal
