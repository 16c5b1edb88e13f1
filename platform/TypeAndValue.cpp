// SPDX-License-Identifier: Apache-2.0
#include "platform/TypeAndValue.h"

#include "platform/Strings.h"

namespace Quorvane {

template class RefCounted<TypeAndValueImpl>;

TypeAndValueImpl::~TypeAndValueImpl() = default;

bool TypeAndValueImpl::operator==(TypeAndValueImpl const& other) const {
    return stringCompareNoCase(m_type, other.m_type, 0) == 0 && m_value == other.m_value;
}

TypeAndValue::TypeAndValue(TypeAndValue const& other) {
    RefCountedImplCopy(m_wrapper, other.m_wrapper);
}

TypeAndValue& TypeAndValue::operator=(TypeAndValue const& other) {
    RefCountedImplCopy(m_wrapper, other.m_wrapper);
    return *this;
}

TypeAndValue::~TypeAndValue() {
    delete m_wrapper;
}

std::string const& TypeAndValue::type() const {
    if (isNull()) {
        throw Exception("type", 1, nullptr, 0);
    }
    return impl()->type();
}

bool TypeAndValue::operator==(TypeAndValue const& other) const {
    if (isNull() || other.isNull()) {
        return isNull() == other.isNull();
    }
    return *impl() == *other.impl();
}

std::string const& TypeAndValue::value() const {
    if (isNull()) {
        throw Exception("value", 1, nullptr, 0);
    }
    return impl()->value();
}

void TypeAndValue::resetWrapper(RefCounted<TypeAndValueImpl>* wrapper) {
    delete m_wrapper;
    m_wrapper = wrapper;
}

} // namespace Quorvane
