#include "Platform/AppSupport/MessageSender.h"

#include <sdbus-c++/IConnection.h>
#include <sdbus-c++/IProxy.h>
#include <sdbus-c++/sdbus-c++.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace quaverly {
namespace {

using Clock = std::chrono::steady_clock;

struct Waiting {
  OneWayCall call;
  Clock::time_point deadline;
};

/// May block for as long as the bus likes.
void sendNow(const OneWayCall& call) {
  try {
    const auto bus = sdbus::createSessionBusConnectionWithAddress(call.bus);
    const auto object = sdbus::createProxy(*bus, call.destination, call.object);
    object->callMethod(call.method).onInterface(call.interface).dontExpectReply();
  } catch (const sdbus::Error&) {
    // Nobody is there to hear it.
  }
}

}  // namespace

/// Shared with the thread, which lives on when the bus holds it and everybody else has gone.
struct MessageSender::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Waiting> waiting;  // the first one is being sent while the thread runs
  bool runs = false;

  void run() {
    std::unique_lock lock(mutex);
    while (!waiting.empty()) {
      const Waiting first = waiting.front();
      lock.unlock();
      if (Clock::now() < first.deadline) sendNow(first.call);
      lock.lock();
      waiting.pop_front();
    }
    runs = false;
    changed.notify_all();
  }
};

MessageSender::MessageSender() : _state(std::make_shared<State>()) {}

MessageSender::~MessageSender() = default;

void MessageSender::send(OneWayCall call) {
  const std::lock_guard lock(_state->mutex);
  _state->waiting.push_back({std::move(call), Clock::now() + limit});
  if (std::exchange(_state->runs, true)) return;
  std::thread([state = _state] { state->run(); }).detach();
}

void MessageSender::finish() {
  std::unique_lock lock(_state->mutex);
  if (_state->waiting.empty()) return;
  const auto deadline = _state->waiting.back().deadline;  // the message itself goes meanwhile
  _state->changed.wait_until(lock, deadline, [this] { return !_state->runs; });
}

}  // namespace quaverly
