// SPDX-License-Identifier: Apache-2.0
#include "adapter/NameLookups.h"

namespace Quorvane {

namespace {

PendingLookup s_start(std::string const& name) {
    return name.empty() ? PendingLookup()
                        : Resolver::instance().start(RecordType::mailName, name, RecordClass::IN);
}

} // namespace

void NameLookups::start(std::string const& announced, std::string const& sender) {
    m_announced = s_start(announced);
    m_sender = s_start(sender);
    m_areUnderWay = true;
}

NameLookups::Answers NameLookups::finish() {
    bool const doesAnnouncedResolve = !m_announced.wait().isEmpty();
    bool const doesSenderResolve = !m_sender.wait().isEmpty();
    *this = NameLookups();
    return {doesAnnouncedResolve, doesSenderResolve};
}

} // namespace Quorvane
