#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::library {

/// Runs `question` on the main thread and waits for its answer; nothing when `stop` is asked for first, and
/// then the question may still run later. Workers only.
template <class Answer>
std::optional<Answer> askMainThread(std::function<Answer()> question, const std::stop_token& stop) {
  struct Exchange {
    std::mutex mutex;
    std::condition_variable_any answered;
    std::optional<Answer> answer;
  };
  auto exchange = std::make_shared<Exchange>();
  NSRunLoop::mainRunLoop().performBlock([exchange, question = std::move(question)] {
    Answer answer = question();
    std::lock_guard lock(exchange->mutex);
    exchange->answer = std::move(answer);
    exchange->answered.notify_all();
  });
  std::unique_lock lock(exchange->mutex);
  exchange->answered.wait(lock, stop, [&] { return exchange->answer.has_value(); });
  return std::move(exchange->answer);
}

}  // namespace quaverly::library
