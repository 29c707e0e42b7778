#pragma once

#include "Platform/Foundation/NSRunLoop.h"

namespace boost::asio {
class io_context;
}

namespace quaverly {

/// The event loop below the run loop, for the platform's own rooms: what they wait for, they wait for here.
class NSRunLoop::Core {
 public:
  Core();
  ~Core();

  boost::asio::io_context& context();
  std::shared_ptr<Clock> clock();

 private:
  struct Parts;
  std::unique_ptr<Parts> _parts;
};

}  // namespace quaverly
