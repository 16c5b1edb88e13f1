// SPDX-License-Identifier: Apache-2.0
//
// HeaderContainer: all header fields of one message in the message's order, a counted handle over
// one list. Copying shares the list; a default-constructed container has an empty list of its own.
// Fill it on one thread, then share it read-only.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"
#include "platform/Header.h"

#include <list>
#include <string>

namespace Quorvane {

// The list that containers share.
class QV_API HeaderContainerImpl : public virtual RefImpl, public Recycled {
  public:
    HeaderContainerImpl() = default;
    ~HeaderContainerImpl() override;

    std::list<Header> m_headers; // in the message's order
};

class QV_API HeaderContainer {
  public:
    // An empty list of its own.
    HeaderContainer();
    HeaderContainer(HeaderContainer const& other);
    HeaderContainer& operator=(HeaderContainer const& other);
    virtual ~HeaderContainer();

    // Valid as long as a container shares the list.
    std::list<Header> const& headers() const;
    // Adds `header` at the end; every container that shares the list sees it.
    void append(Header const& header);
    // The same with a new header.
    void append(std::string name, std::string value);

  private:
    RefCounted<HeaderContainerImpl>* m_wrapper = nullptr;
};

} // namespace Quorvane
