#include "Platform/Foundation/NSRunLoop.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <utility>

#include "Platform/Foundation/NSRunLoopCore.h"

namespace quaverly {
namespace {

namespace asio = boost::asio;

/// What one call of `runOnce` does at most, so that work which begets work cannot keep it for ever.
constexpr size_t maximumWorkPerCall = 10'000;

/// A timer whose callback dies with it: one that has already expired and waits for its turn does not run
/// either.
class LoopAlarm : public Clock::Alarm {
 public:
  LoopAlarm(asio::io_context& context, Clock::Duration delay, std::function<void()> callback)
      : _timer(context, delay), _callback(std::make_shared<std::function<void()>>(std::move(callback))) {
    _timer.async_wait([weak = std::weak_ptr(_callback)](boost::system::error_code error) {
      const auto callback = weak.lock();
      if (!error && callback) (*callback)();
    });
  }

 private:
  asio::steady_timer _timer;
  std::shared_ptr<std::function<void()>> _callback;
};

class LoopClock : public Clock {
 public:
  explicit LoopClock(asio::io_context& context) : _context(context) {}

  Date date() const override { return std::chrono::system_clock::now(); }
  Instant now() const override { return std::chrono::steady_clock::now(); }
  std::unique_ptr<Alarm> after(Duration delay, std::function<void()> callback) override {
    return std::make_unique<LoopAlarm>(_context, delay, std::move(callback));
  }

 private:
  asio::io_context& _context;
};

size_t runReadyWork(asio::io_context& context) {
  size_t count = 0;
  while (count < maximumWorkPerCall && context.poll_one() > 0) ++count;
  return count;
}

}  // namespace

struct NSRunLoop::Core::Parts {
  asio::io_context context;
  // Without work the loop waits for some; it ends when it is told to.
  asio::executor_work_guard<asio::io_context::executor_type> work = asio::make_work_guard(context);
  std::shared_ptr<Clock> clock = std::make_shared<LoopClock>(context);
};

NSRunLoop::Core::Core() : _parts(std::make_unique<Parts>()) {}
NSRunLoop::Core::~Core() = default;

boost::asio::io_context& NSRunLoop::Core::context() {
  return _parts->context;
}

std::shared_ptr<Clock> NSRunLoop::Core::clock() {
  return _parts->clock;
}

NSRunLoop::NSRunLoop() : _core(std::make_unique<Core>()) {}
NSRunLoop::~NSRunLoop() = default;

NSRunLoop& NSRunLoop::mainRunLoop() {
  static NSRunLoop loop;
  return loop;
}

void NSRunLoop::performBlock(std::function<void()> block) {
  asio::post(_core->context(), std::move(block));
}

void NSRunLoop::run() {
  _core->context().run();
  // Made ready again here and not on entry, so that a stop that comes just before `run` is not lost.
  _core->context().restart();
}

void NSRunLoop::stop() {
  _core->context().stop();
}

bool NSRunLoop::runOnce(Clock::Duration limit) {
  auto& context = _core->context();
  size_t count = runReadyWork(context);
  if (count == 0 && limit > Clock::Duration::zero()) {
    count = context.run_one_for(limit);
    count += runReadyWork(context);
  }
  if (context.stopped()) context.restart();
  return count > 0;
}

std::shared_ptr<Clock> NSRunLoop::clock() {
  return _core->clock();
}

}  // namespace quaverly
