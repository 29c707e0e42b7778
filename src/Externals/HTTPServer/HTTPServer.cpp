#include "Externals/HTTPServer/HTTPServer.h"

#include <mutex>
#include <utility>

#include "Platform/Foundation/NSLog.h"

namespace quaverly {
namespace {

/// The class object's lock.
std::recursive_mutex& classLock() {
  static std::recursive_mutex lock;
  return lock;
}

HTTPServer* sharedInstance = nullptr;

/// 0.0.0.0 and the port as the platform writes an IPv4 address: length, family, port and address in network
/// byte order, and eight zeros.
NSData anyAddress(int port) {
  std::string address(16, '\0');
  address[0] = static_cast<char>(address.size());
  address[1] = static_cast<char>(CFSocketFamily::inet);
  address[2] = static_cast<char>(port >> 8);
  address[3] = static_cast<char>(port & 0xFF);
  return NSData(std::move(address));
}

/// The application's own string table has no texts for errors here: their names speak for themselves.
std::string localizedErrorName(const std::string& name) {
  return name;
}

}  // namespace

HTTPServer* HTTPServer::sharedHTTPServer() {
  const std::lock_guard lock(classLock());
  if (!sharedInstance) allocWithZone()->init();
  return sharedInstance;
}

HTTPServer* HTTPServer::allocWithZone() {
  const std::lock_guard lock(classLock());
  if (sharedInstance) return nullptr;
  sharedInstance = new HTTPServer;
  return sharedInstance;
}

HTTPServer* HTTPServer::init() {
  setState(HTTPServerStateIdle);
  return this;
}

void HTTPServer::setState(HTTPServerState state) {
  if (std::exchange(_state, state) == state) return;
  NSNotificationCenter::defaultCenter().postNotificationName(HTTPServerNotificationStateChanged, this);
}

void HTTPServer::errorWithName(const std::string& name) {
  setLastError(make<NSError>(
      "HTTPServerError", 0,
      std::map<std::string, std::string>{{NSLocalizedDescriptionKey, localizedErrorName(name)}}));
}

void HTTPServer::setLastError(Ref<NSError> error) {
  _lastError = std::move(error);
  if (!_lastError) return;
  stop();
  setState(HTTPServerStateIdle);
  NSLog("HTTPServer error: " + _lastError->description());
}

void HTTPServer::start() {
  setLastError(nullptr);
  setState(HTTPServerStateStarting);
  if (!openSocket()) return;
  _listeningHandle = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(_socket),
                                                                        NSFileHandle::CloseOnDealloc::yes);
  NSNotificationCenter::defaultCenter().addObserver(this, &HTTPServer::receiveIncomingConnectionNotification,
                                                    NSFileHandleConnectionAcceptedNotification, nullptr);
  _listeningHandle->acceptConnectionInBackgroundAndNotify();
  setState(HTTPServerStateRunning);
}

/// The part of starting that can fail; says why it did.
bool HTTPServer::openSocket() {
  _socket = CFSocketCreate(CFSocketFamily::inet, CFSocketType::stream, CFSocketProtocol::tcp);
  if (!_socket) {
    errorWithName("Unable to create socket.");
  } else if (setsockopt(CFSocketGetNative(_socket), CFSocketOption::reuseAddress, 1) != 0) {
    errorWithName("Unable to set socket options.");
  } else if (CFSocketSetAddress(_socket, anyAddress(port)) != CFSocketError::success) {
    errorWithName("Unable to bind socket to address.");
  } else {
    return true;
  }
  return false;
}

void HTTPServer::stop() {
  setState(HTTPServerStateStopping);
  NSNotificationCenter::defaultCenter().removeObserver(this, NSFileHandleConnectionAcceptedNotification,
                                                       nullptr);
  // A handler that still has its server ends itself when it goes.
  std::exchange(_responseHandlers, {}).clear();
  send(_listeningHandle, &NSFileHandle::closeFile);
  _listeningHandle = nullptr;
  const auto incomingRequests = _incomingRequests;
  for (const auto& [fileHandle, request] : incomingRequests) {
    stopReceivingForFileHandleClose(fileHandle, Close::yes);
  }
  if (_socket) CFSocketInvalidate(_socket);
  _socket = nullptr;
  setState(HTTPServerStateIdle);
}

void HTTPServer::receiveIncomingConnectionNotification(const NSNotification& notification) {
  const auto item = notification.userInfo().find(NSFileHandleNotificationFileHandleItem);
  if (item != notification.userInfo().end()) {
    const Ref<NSFileHandle> fileHandle(static_cast<NSFileHandle*>(item->second.get()));
    _incomingRequests[fileHandle] = CFHTTPMessageCreateEmpty();
    NSNotificationCenter::defaultCenter().addObserver(this, &HTTPServer::receiveIncomingDataNotification,
                                                      NSFileHandleDataAvailableNotification,
                                                      fileHandle.get());
    fileHandle->waitForDataInBackgroundAndNotify();
  }
  send(_listeningHandle, &NSFileHandle::acceptConnectionInBackgroundAndNotify);
}

void HTTPServer::receiveIncomingDataNotification(const NSNotification& notification) {
  const Ref<NSFileHandle> fileHandle(static_cast<NSFileHandle*>(notification.object()));
  const NSData data = fileHandle->availableData();
  const auto incoming = _incomingRequests.find(fileHandle);
  const bool isReceived = data.length() > 0 && incoming != _incomingRequests.end() &&
                          CFHTTPMessageAppendBytes(incoming->second, data.text());
  if (!isReceived) {
    // A peer that has hung up leaves nothing to be closed: dropping its handle is enough.
    stopReceivingForFileHandleClose(fileHandle, data.length() > 0 ? Close::yes : Close::no);
  } else if (CFHTTPMessageIsHeaderComplete(incoming->second)) {
    takeRequest(Ref(incoming->second), fileHandle);
  } else {
    fileHandle->waitForDataInBackgroundAndNotify();
  }
}

void HTTPServer::takeRequest(const Ref<CFHTTPMessage>& request, const Ref<NSFileHandle>& fileHandle) {
  const auto handler =
      HTTPResponseHandler::handlerForRequestFileHandleServer(request, fileHandle, Ref<HTTPServer>(this));
  if (handler) _responseHandlers.insert(handler);
  stopReceivingForFileHandleClose(fileHandle, Close::no);
  if (handler) handler->startResponse();
}

void HTTPServer::stopReceivingForFileHandleClose(const Ref<NSFileHandle>& fileHandle, Close close) {
  if (close == Close::yes) fileHandle->closeFile();
  NSNotificationCenter::defaultCenter().removeObserver(this, NSFileHandleDataAvailableNotification,
                                                       fileHandle.get());
  _incomingRequests.erase(fileHandle);
}

void HTTPServer::closeHandler(HTTPResponseHandler* handler) {
  handler->endResponse();
  _responseHandlers.erase(Ref<HTTPResponseHandler>(handler));
}

}  // namespace quaverly
