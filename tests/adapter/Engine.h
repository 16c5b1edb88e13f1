// SPDX-License-Identifier: Apache-2.0
//
// EngineTest: a fixture with a rule folder of its own (an empty tree until a test writes another),
// a resolver that answers nothing and no trusted relays.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"
#include "scanner/records/RecordAccess.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <gtest/gtest.h>
#include <memory>

namespace Quorvane::Testing {

using MsgProperties = DeepHeaderAdapter::MsgProperties;
using SingleReceiver = DeepHeaderAdapter::SingleReceiver;
using EliteHits = DeepHeaderAdapter::EliteHits;

class EngineTest : public testing::Test {
  protected:
    EngineTest() {
        m_rules.writeTree({});
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(settings);
        TrustedMTASetRef::install({}, {});
    }

    // The engine over the rules as they are on disk at the first call.
    DeepHeaderAdapter& engine() {
        if (!m_engine) {
            m_engine = std::make_unique<DeepHeaderAdapter>();
        }
        return *m_engine;
    }

    MsgProperties fields(Message const& message) {
        MsgProperties props;
        auto query = message.query();
        engine().getFields(props, query);
        return props;
    }

    MsgProperties chain(Message const& message) {
        auto props = fields(message);
        engine().parseFields(props);
        return props;
    }

    MsgProperties attributes(Message const& message) {
        auto props = chain(message);
        engine().getAttributes(props);
        return props;
    }

    RuleFolder m_rules;

  private:
    std::unique_ptr<DeepHeaderAdapter> m_engine;
};

} // namespace Quorvane::Testing
