// SPDX-License-Identifier: Apache-2.0
//
// VectorTrial: judges attributes that no message has shown, to find out what would lead to another
// verdict. One object a search, one thread; the engine outlives it.
#pragma once

#include "adapter/DeepHeaderAdapter.h"

namespace Quorvane {

// The query of a judgement of bare attributes: only its settings matter.
DeepHeaderQuery vectorQuery(DeepHeaderSettings const& settings);

class VectorTrial {
  public:
    VectorTrial(DeepHeaderAdapter& engine, DeepHeaderSettings const& settings)
        : m_engine(engine), m_query(vectorQuery(settings)) {}

    // The verdict, without the changes that lead there.
    Alternative judge(AttributeVector const& attributes);

  private:
    DeepHeaderAdapter& m_engine;
    DeepHeaderQuery m_query;
};

} // namespace Quorvane
