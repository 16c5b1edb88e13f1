// SPDX-License-Identifier: Apache-2.0
//
// A mail filter that sees what qvmilter sees and does nothing: what a filter costs a mail server at
// least. The argument is its socket.
#include <libmilter/mfapi.h>

namespace {

constexpr unsigned long steps = SMFIP_NOBODY | SMFIP_NOEOH | SMFIP_NODATA | SMFIP_NOUNKNOWN |
                                SMFIP_HDR_LEADSPC | SMFIP_NR_CONN | SMFIP_NR_HELO | SMFIP_NR_MAIL |
                                SMFIP_NR_RCPT | SMFIP_NR_HDR;

sfsistat s_onNegotiate(SMFICTX* /*context*/, unsigned long actions, unsigned long offered,
                       unsigned long /*reserved*/, unsigned long /*reserved*/,
                       unsigned long* wantedActions, unsigned long* wanted,
                       unsigned long* reserved1, unsigned long* reserved2) {
    *wantedActions = actions & (SMFIF_ADDHDRS | SMFIF_CHGHDRS);
    *wanted = offered & steps;
    *reserved1 = *reserved2 = 0;
    return SMFIS_CONTINUE;
}

sfsistat s_onHeader(SMFICTX* /*context*/, char* /*name*/, char* /*value*/) {
    return SMFIS_NOREPLY;
}

sfsistat s_onEndOfMessage(SMFICTX* /*context*/) {
    return SMFIS_ACCEPT;
}

} // namespace

int main(int argc, char** argv) {
    static char name[] = "empty";
    smfiDesc filter{};
    filter.xxfi_name = name;
    filter.xxfi_version = SMFI_VERSION;
    filter.xxfi_flags = SMFIF_ADDHDRS | SMFIF_CHGHDRS;
    filter.xxfi_negotiate = s_onNegotiate;
    filter.xxfi_header = s_onHeader;
    filter.xxfi_eom = s_onEndOfMessage;
    bool const isReady =
        argc == 2 && smfi_setconn(argv[1]) == MI_SUCCESS && smfi_register(filter) == MI_SUCCESS;
    return isReady ? smfi_main() : 64;
}
