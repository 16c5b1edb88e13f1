// SPDX-License-Identifier: Apache-2.0
#include "FakeMilter.h"

#include <cstddef>

namespace {

smfiDesc s_filter;

int s_change(SMFICTX* context) {
    context->m_isTooEarly = context->m_isTooEarly || !context->m_isAtEnd;
    return context->m_isAtEnd ? MI_SUCCESS : MI_FAILURE;
}

} // namespace

namespace Quorvane {

smfiDesc const& registeredFilter() {
    return s_filter;
}

} // namespace Quorvane

extern "C" {

int smfi_register(smfiDesc filter) {
    s_filter = filter;
    return MI_SUCCESS;
}

std::size_t smfi_setmaxdatasize(std::size_t size) {
    return size;
}

int smfi_setsymlist(SMFICTX* /*context*/, int /*where*/, char* /*macros*/) {
    return MI_SUCCESS;
}

void* smfi_getpriv(SMFICTX* context) {
    return context->m_session;
}

int smfi_setpriv(SMFICTX* context, void* session) {
    context->m_session = session;
    return MI_SUCCESS;
}

char* smfi_getsymval(SMFICTX* context, char* name) {
    auto const found = context->m_macros.find(name);
    return found == context->m_macros.end() ? nullptr : found->second.data();
}

int smfi_insheader(SMFICTX* context, int /*index*/, char* name, char* value) {
    context->m_addedNames.emplace_back(name);
    context->m_addedValues.emplace_back(value);
    return s_change(context);
}

int smfi_chgheader(SMFICTX* context, char* /*name*/, int /*index*/, char* /*value*/) {
    ++context->m_removed;
    return s_change(context);
}

int smfi_quarantine(SMFICTX* ctx, char* /*reason*/) {
    return s_change(ctx);
}

int smfi_setreply(SMFICTX* /*context*/, char* /*code*/, char* /*extendedCode*/, char* /*text*/) {
    return MI_SUCCESS;
}

} // extern "C"
