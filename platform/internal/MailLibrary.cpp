// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/MailLibrary.h"

#include <csignal>
#include <gmime/gmime.h>

namespace Quorvane {

namespace {

// GMime starts a library for encrypted mail, which makes the process ignore SIGPIPE from then on.
// What SIGPIPE does is for the host to decide.
void s_startGMime() {
    struct sigaction before {};
    sigaction(SIGPIPE, nullptr, &before);
    g_mime_init();
    sigaction(SIGPIPE, &before, nullptr);
}

// The classes of addresses are made here once, and not by whichever thread parses first while
// others read them.
bool s_start() {
    s_startGMime();
    g_type_class_ref(INTERNET_ADDRESS_TYPE_MAILBOX);
    g_type_class_ref(INTERNET_ADDRESS_TYPE_GROUP);
    g_type_class_ref(INTERNET_ADDRESS_LIST_TYPE);
    return true;
}

} // namespace

void startMailLibrary() {
    static bool const isStarted = s_start();
    (void)isStarted;
}

} // namespace Quorvane
