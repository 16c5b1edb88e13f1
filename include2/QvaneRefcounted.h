// SPDX-License-Identifier: Apache-2.0
//
// The reference counting of every shared object: three levels, of which only the lowest
// is shared.
//
//   RefImpl        base of every shareable implementation object; carries the count
//   RefCounted<T>  a small heap wrapper that owns exactly one counted reference to a T
//   Ref<T>         a handle that owns exactly one wrapper
//
// Copying a handle makes a new wrapper over the same implementation and adds one to its count.
// The implementation dies, through its virtual destructor, with its last wrapper.
//
// Threads: counts change only by atomic read-modify-write, so wrappers over one implementation may
// be made and destroyed on different threads at once. Nothing else is synchronised: neither the
// implementation's fields, nor a handle's wrapper pointer, nor RefCountedImplCopy on one target.
#pragma once

#include "include2/Exception.h"
#include "include2/Export.h"
#include "include2/Recycled.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace Quorvane {

// Locations that operator-> reports; programs match on them, so never renumber.
inline constexpr char refCountedFile[] = "include2/QvaneRefcounted";
inline constexpr unsigned int refArrowLine = 359;      // of a handle that may change
inline constexpr unsigned int refArrowConstLine = 368; // of a constant one

// Starts with a count of 1: the creator's reference, which the creator passes to the first wrapper.
class QV_API RefImpl {
  public:
    RefImpl() = default;
    RefImpl(RefImpl const&) = delete;
    RefImpl& operator=(RefImpl const&) = delete;
    virtual ~RefImpl();

    // For whoever holds a reference already.
    void addReference() { m_references.fetch_add(1, std::memory_order_relaxed); }
    // True when the reference given up was the last one; the caller then destroys the object.
    bool dropReference() { return m_references.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    // For tests and diagnostics: out of date as soon as it is read.
    std::int32_t references() const { return m_references.load(std::memory_order_relaxed); }

  private:
    std::atomic<std::int32_t> m_references{1};
};

// The wrapper: owns one counted reference to a T, or holds null. One thread at a time.
template<typename T>
class RefCounted : public Recycled {
  public:
    // Holds a new default-constructed T and takes over its initial reference.
    RefCounted() : m_impl(new T) {}

    // Without `addReference` the caller passes on the reference it holds, and `impl` may be null.
    // With it the count grows by one; a null `impl` then throws an Exception of category 4.
    RefCounted(T* impl, bool addReference) : m_impl(impl) {
        if (addReference) {
            s_addReference(impl);
        }
    }

    RefCounted(RefCounted const&) = delete;
    RefCounted& operator=(RefCounted const&) = delete;

    virtual ~RefCounted() {
        if (m_impl != nullptr && m_impl->dropReference()) {
            delete static_cast<RefImpl*>(m_impl);
        }
    }

    // Identity of the implementation, not equality of its content.
    virtual bool operator==(RefCounted const& other) const { return m_impl == other.m_impl; }

    // May be null.
    T* impl() const { return m_impl; }

    // Takes a reference to `impl`. REQUIRES: holds null. A null `impl` throws as the constructor
    // does.
    void share(T* impl) {
        s_addReference(impl);
        m_impl = impl;
    }

  private:
    static void s_addReference(T* impl) {
        if (impl == nullptr) {
            throw Exception("RefCounted constructor for RefImpl failed.", 4, nullptr, 0);
        }
        impl->addReference();
    }

    T* m_impl;
};

// The copy step of a handle: afterwards `target` is a wrapper of its own over the implementation of
// `source`, or null when `source` is null. What `target` held before is released first, but not
// before there is memory for the new wrapper: without, `target` stays as it was.
template<typename T>
void RefCountedImplCopy(RefCounted<T>*& target, RefCounted<T> const* source) {
    if (target == source) {
        return;
    }
    auto* const fresh = source == nullptr ? nullptr : new RefCounted<T>(nullptr, false);
    delete target;
    target = fresh;
    if (source != nullptr && source->impl() != nullptr) {
        target->share(source->impl());
    }
}

// The handle: owns one wrapper, or is empty. Copies share the implementation. One thread at a time.
template<typename T>
class Ref {
  public:
    // Empty.
    Ref() = default;
    // A wrapper of its own over the implementation of `other`.
    Ref(Ref const& other) { RefCountedImplCopy(m_wrapper, other.m_wrapper); }

    // The same; what was held before is released.
    Ref& operator=(Ref const& other) {
        RefCountedImplCopy(m_wrapper, other.m_wrapper);
        return *this;
    }

    // Leaves `other` empty.
    Ref(Ref&& other) noexcept : m_wrapper(std::exchange(other.m_wrapper, nullptr)) {}

    virtual ~Ref() {
        delete m_wrapper;
        m_wrapper = nullptr;
    }

    // An Exception of category 1 when the handle has no wrapper; null when its wrapper holds null.
    T* operator->() { return implOrThrow(refArrowLine); }
    // The same of a constant handle.
    T const* operator->() const { return implOrThrow(refArrowConstLine); }

    // True: there is no wrapper.
    bool isEmpty() const { return m_wrapper == nullptr; }

  protected:
    // Takes ownership of `wrapper`, which may be null.
    explicit Ref(RefCounted<T>* wrapper) : m_wrapper(wrapper) {}

  private:
    T* implOrThrow(unsigned int line) const {
        if (m_wrapper == nullptr) {
            throw Exception("operator->", 1, refCountedFile, line);
        }
        return m_wrapper->impl();
    }

    RefCounted<T>* m_wrapper = nullptr;
};

} // namespace Quorvane
