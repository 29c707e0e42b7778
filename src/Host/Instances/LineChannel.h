#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Foundation/Sockets/Descriptor.h"

namespace quaverly::instances {

/// Lines of text both ways over a connected socket. Main thread; gone, it calls nobody and the connection is
/// closed.
class LineChannel {
 public:
  static constexpr size_t maximumLine = size_t{64} * 1024;
  /// How much may wait for a peer that does not read.
  static constexpr size_t maximumQueue = size_t{4} * 1024 * 1024;

  /// A line without its end. It may end the channel.
  using OnLine = std::function<void(const std::string& line)>;
  /// Once: the peer has gone, or keeps to no rule. Nothing follows.
  using OnEnd = std::function<void()>;

  LineChannel(std::shared_ptr<Descriptor> connection, OnLine onLine, OnEnd onEnd);
  ~LineChannel() { _connection->close(); }
  LineChannel(const LineChannel&) = delete;
  LineChannel& operator=(const LineChannel&) = delete;

  /// Sends a line, never waiting; dropped when the peer is gone.
  void send(std::string_view line);

 private:
  void waitForBytes();
  void readBytes();
  bool tellLines();
  void writeBytes();
  void end();

  std::shared_ptr<Descriptor> _connection;
  std::shared_ptr<OnLine> _onLine;
  OnEnd _onEnd;
  std::string _received;
  std::string _queue;
};

}  // namespace quaverly::instances
