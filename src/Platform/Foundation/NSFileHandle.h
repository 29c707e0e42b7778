#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/CFSocket.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSObject.h"

namespace quaverly {

class ConnectionAcceptor;
class SocketReader;
class SocketWriter;

/// What was accepted is in the notification's user info, under `NSFileHandleNotificationFileHandleItem`.
inline constexpr const char* NSFileHandleConnectionAcceptedNotification =
    "NSFileHandleConnectionAcceptedNotification";
inline constexpr const char* NSFileHandleDataAvailableNotification = "NSFileHandleDataAvailableNotification";
inline constexpr const char* NSFileHandleNotificationFileHandleItem =
    "NSFileHandleNotificationFileHandleItem";

/// A socket as something to accept connections from, or to read from and to write to. Main thread only.
///
/// Nothing here waits: what has to wait is done in the background of the main loop and told by notifications,
/// whose object is the handle. A closed handle is inert: it neither notifies nor reads nor writes.
///
/// Connections come only from programs of this user, or of root, on this machine; others are closed unseen.
class NSFileHandle : public NSObject {
 public:
  enum class CloseOnDealloc { no, yes };

  /// From being accepted on, a connection has this long to say what it wants: then it reads as ended.
  static constexpr auto readLimit = std::chrono::minutes(1);

  /// Shares the socket with its other wrappers.
  static Ref<NSFileHandle> initWithFileDescriptorCloseOnDealloc(CFSocketNativeHandle descriptor,
                                                                CloseOnDealloc closeOnDealloc);

  /// Accepts one connection and posts `NSFileHandleConnectionAcceptedNotification`, in a later turn. The new
  /// handle closes its connection when it is dropped.
  void acceptConnectionInBackgroundAndNotify();

  /// Posts `NSFileHandleDataAvailableNotification` once, in a later turn, when there is something to read or
  /// the connection has ended. Does not keep the handle alive.
  void waitForDataInBackgroundAndNotify();

  /// What is there to read; empty when the connection has ended or its time is up.
  NSData availableData();

  /// Sends the data, and keeps what the connection does not take at once until it does. Data that is backed
  /// by a file goes out from there; if the file has become shorter, the connection ends short. False when the
  /// peer is gone, has taken nothing for a minute, or was sent a file that became shorter.
  [[nodiscard]] bool writeData(const NSData& data);

  /// Closes the connection as soon as the peer has everything that was written to it.
  void closeFile();

 protected:
  ~NSFileHandle() override;

 private:
  NSFileHandle(CFSocketNativeHandle descriptor, CloseOnDealloc closeOnDealloc,
               std::optional<Clock::Instant> readDeadline);

  void postAccepted(CFSocketNativeHandle connection);
  SocketReader& reader();

  CFSocketNativeHandle _descriptor;  // null once closed
  CloseOnDealloc _closeOnDealloc;
  std::optional<Clock::Instant> _readDeadline;
  // Each made when first needed.
  std::unique_ptr<ConnectionAcceptor> _acceptor;
  std::unique_ptr<SocketReader> _reader;
  std::unique_ptr<SocketWriter> _writer;
};

}  // namespace quaverly
