// SPDX-License-Identifier: Apache-2.0
//
// Held: sets a flag, under the interpreter's lock, while an iterator works: another thread could
// ask it for its next element meanwhile.
#pragma once

namespace Quorvane::Python {

class Held {
  public:
    explicit Held(bool& flag) : m_flag(flag) { m_flag = true; }
    Held(Held const&) = delete;
    Held& operator=(Held const&) = delete;
    ~Held() { m_flag = false; }

  private:
    bool& m_flag;
};

} // namespace Quorvane::Python
