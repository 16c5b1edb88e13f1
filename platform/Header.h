// SPDX-License-Identifier: Apache-2.0
//
// Header: one header field of a message, a TypeAndValue whose type is the field's name. Ownership,
// sharing and threads as for TypeAndValue.
#pragma once

#include "platform/TypeAndValue.h"

#include <string>
#include <utility>

namespace Quorvane {

// What handles share: the name and the value of a header field.
class QV_API HeaderImpl : public TypeAndValueImpl {
  public:
    HeaderImpl() = default;
    // `name` without the colon.
    HeaderImpl(std::string name, std::string value)
        : TypeAndValueImpl(std::move(name), std::move(value)) {}
    ~HeaderImpl() override;
};

class QV_API Header : public TypeAndValue {
  public:
    // Null.
    Header() = default;
    // `name` without the colon; `value` as it stands in the message, its folding included.
    Header(std::string name, std::string value);
    Header(Header const& other) = default;
    ~Header() override;

    // "Name: value"; empty on a null handle.
    virtual std::string asString() const;
    // Gives the handle a fresh implementation with empty name and value.
    virtual void newImpl();
    // Shares the implementation of `other`.
    virtual Header& operator=(Header const& other);
    // As for TypeAndValue.
    virtual bool operator==(Header const& other) const;
    using TypeAndValue::operator==;

    // An Exception of category 1 on a null handle.
    std::string typeLowerCase() const;

  protected:
    // Takes ownership of `wrapper`.
    explicit Header(RefCounted<TypeAndValueImpl>* wrapper) : TypeAndValue(wrapper) {}
};

} // namespace Quorvane
