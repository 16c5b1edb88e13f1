// SPDX-License-Identifier: Apache-2.0
//
// Metrics: the daemon's figures for Prometheus. Any thread.
#pragma once

#include "apps/milter/Judgement.h"
#include "platform/Resolver.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace Quorvane::Milter {

class Metrics {
  public:
    Metrics();
    Metrics(Metrics const&) = delete;
    Metrics& operator=(Metrics const&) = delete;
    ~Metrics();

    // A session began (1) or ended (-1).
    void sessions(int change);
    void message(Judgement const& judgement, Action const& action, double seconds);
    void exempted();
    void lookup(LookupResult result, std::chrono::duration<double> time);
    void rules(std::int32_t version, std::chrono::system_clock::time_point loaded);
    void reloaded(bool isDone);

    // In the text format of Prometheus, version 0.0.4.
    std::string text() const;

  private:
    struct Families;
    std::unique_ptr<Families> m_families;
};

} // namespace Quorvane::Milter
