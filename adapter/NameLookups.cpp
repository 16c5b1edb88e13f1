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
    Answers const answers{m_announced.wait().result(), m_sender.wait().result()};
    *this = NameLookups();
    return answers;
}

} // namespace Quorvane
