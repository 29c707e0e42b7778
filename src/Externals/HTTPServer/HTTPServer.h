#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "Externals/HTTPServer/HTTPResponseHandler.h"
#include "Platform/CFNetwork/CFHTTPMessage.h"
#include "Platform/Foundation/CFSocket.h"
#include "Platform/Foundation/NSError.h"
#include "Platform/Foundation/NSFileHandle.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/Foundation/NSObject.h"

namespace quaverly {

enum HTTPServerState {
  HTTPServerStateIdle = 0,
  HTTPServerStateStarting = 1,
  HTTPServerStateRunning = 2,
  HTTPServerStateStopping = 3,
};

/// Posted, with the server as its object, whenever the server's state has changed.
inline constexpr const char* HTTPServerNotificationStateChanged = "ServerNotificationStateChanged";

/// A minimal HTTP/1.1 server on TCP port 8080 of every local IPv4 address. It puts a connection's request
/// head together and hands the connection to a response handler, which writes the answer and has it closed.
///
/// There is one per process, and it never goes away. Main thread only, except where it says otherwise.
class HTTPServer : public NSObject {
 public:
  static constexpr int port = 8080;

  /// The single instance, made on first use. Any thread.
  static HTTPServer* sharedHTTPServer();
  /// Null when the instance exists already. Any thread.
  static HTTPServer* allocWithZone();
  HTTPServer* init();

  // The instance is immortal.
  HTTPServer* copyWithZone() { return this; }
  NSObject* retain() override { return this; }
  void release() override {}
  NSObject* autorelease() override { return this; }
  size_t retainCount() const override { return ~size_t{0}; }

  /// Opens the listener and runs. When that fails, `lastError` says why and the server is idle; a server that
  /// was running before is then stopped too.
  void start();
  /// Closes the listener and every connection, and is idle.
  void stop();

  HTTPServerState state() const { return _state; }
  /// Posts the notification when the value is a new one.
  void setState(HTTPServerState state);

  /// The last failure; null while all is well.
  Ref<NSError> lastError() const { return _lastError; }
  /// An error also stops the server and is logged; null only clears.
  void setLastError(Ref<NSError> error);

  /// Records an error of that name, as `setLastError` does.
  void errorWithName(const std::string& name);

  enum class Close { no, yes };
  /// Closes the connection when asked to, stops observing it, and forgets its request.
  void stopReceivingForFileHandleClose(const Ref<NSFileHandle>& fileHandle, Close close);

  /// For a handler that is done: ends it and lets go of it.
  void closeHandler(HTTPResponseHandler* handler);

  void receiveIncomingConnectionNotification(const NSNotification& notification);
  void receiveIncomingDataNotification(const NSNotification& notification);

 private:
  struct ByIdentity {
    template <class T>
    bool operator()(const Ref<T>& a, const Ref<T>& b) const {
      return std::less<>()(a.get(), b.get());
    }
  };
  HTTPServer() = default;
  ~HTTPServer() override = default;

  bool openSocket();
  void takeRequest(const Ref<CFHTTPMessage>& request, const Ref<NSFileHandle>& fileHandle);

  Ref<NSError> _lastError;
  Ref<NSFileHandle> _listeningHandle;
  Ref<CFSocket> _socket;
  HTTPServerState _state = HTTPServerStateIdle;
  // The requests whose heads are still arriving, by their connections.
  std::map<Ref<NSFileHandle>, Ref<CFHTTPMessage>, ByIdentity> _incomingRequests;
  // What keeps a handler alive while it serves a connection.
  std::set<Ref<HTTPResponseHandler>, ByIdentity> _responseHandlers;
};

}  // namespace quaverly
