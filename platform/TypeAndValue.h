// SPDX-License-Identifier: Apache-2.0
//
// TypeAndValue: a counted handle over a pair of texts, such as a header's name and value. A
// default-constructed handle is null: it has no implementation. Copying a handle shares the
// implementation. Handles over one implementation may live on different threads; the texts
// themselves are not synchronised.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"

#include <string>
#include <utility>

namespace Quorvane {

// What handles share: the two texts.
class QV_API TypeAndValueImpl : public virtual RefImpl, public Recycled {
  public:
    // Both empty.
    TypeAndValueImpl() = default;
    // With these texts.
    TypeAndValueImpl(std::string type, std::string value)
        : m_type(std::move(type)), m_value(std::move(value)) {}
    ~TypeAndValueImpl() override;

    // Same type but for letter case, and same value.
    virtual bool operator==(TypeAndValueImpl const& other) const;

    // Never changes.
    std::string const& type() const { return m_type; }
    // Valid until somebody rewrites it.
    std::string const& value() const { return m_value; }
    // Rewrites it, for all handles.
    void value(std::string const& value) { m_value = value; }

  protected:
    // A lazily parsed header reads and rewrites its own text in const accessors.
    std::string& mutableValue() const { return m_value; }

  private:
    std::string m_type;
    mutable std::string m_value;
};

class QV_API TypeAndValue {
  public:
    TypeAndValue() = default;
    TypeAndValue(TypeAndValue const& other);
    TypeAndValue& operator=(TypeAndValue const& other);
    virtual ~TypeAndValue();

    // An Exception of category 1 ("type") on a null handle.
    virtual std::string const& type() const;
    // Both null, or both with equal implementations.
    virtual bool operator==(TypeAndValue const& other) const;

    // True: there is no implementation.
    bool isNull() const { return m_wrapper == nullptr; }
    // An Exception of category 1 ("value") on a null handle. The reference is valid as long as a
    // handle to the implementation lives and nobody rewrites the value.
    std::string const& value() const;

  protected:
    // Takes ownership of `wrapper`.
    explicit TypeAndValue(RefCounted<TypeAndValueImpl>* wrapper) : m_wrapper(wrapper) {}

    // Takes ownership of `wrapper` and releases the one held before.
    void resetWrapper(RefCounted<TypeAndValueImpl>* wrapper);
    // Null on a null handle.
    TypeAndValueImpl* impl() const { return m_wrapper == nullptr ? nullptr : m_wrapper->impl(); }

  private:
    RefCounted<TypeAndValueImpl>* m_wrapper = nullptr;
};

} // namespace Quorvane
