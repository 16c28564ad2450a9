#pragma once

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace kestrel {

struct XcbRelease {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  /// Replies, errors and events come from malloc.
  template <typename Message>
  void operator()(Message* message) const {
    std::free(message);
  }
};

template <typename Type>
using XcbPtr = std::unique_ptr<Type, XcbRelease>;

}  // namespace kestrel
