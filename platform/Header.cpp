// SPDX-License-Identifier: Apache-2.0
#include "platform/Header.h"

#include "platform/Strings.h"

#include <utility>

namespace Quorvane {

HeaderImpl::~HeaderImpl() = default;

Header::Header(std::string name, std::string value)
    : TypeAndValue(new RefCounted<TypeAndValueImpl>(
          new HeaderImpl(std::move(name), std::move(value)), false)) {}

Header::~Header() = default;

std::string Header::asString() const {
    return isNull() ? std::string() : type() + ": " + value();
}

void Header::newImpl() {
    resetWrapper(new RefCounted<TypeAndValueImpl>(new HeaderImpl, false));
}

Header& Header::operator=(Header const& other) = default;

bool Header::operator==(Header const& other) const {
    return TypeAndValue::operator==(other);
}

std::string Header::typeLowerCase() const {
    std::string name = type();
    stringToLowerNoCopy(name);
    return name;
}

} // namespace Quorvane
