#include "Platform/Foundation/NSFileHandle.h"

#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/Foundation/Sockets/ClosingConnection.h"
#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"
#include "Platform/Foundation/Sockets/SocketReader.h"
#include "Platform/Foundation/Sockets/SocketWriter.h"

namespace quaverly {

NSFileHandle::NSFileHandle(CFSocketNativeHandle descriptor, CloseOnDealloc closeOnDealloc,
                           std::optional<Clock::Instant> readDeadline)
    : _descriptor(std::move(descriptor)), _closeOnDealloc(closeOnDealloc), _readDeadline(readDeadline) {}

NSFileHandle::~NSFileHandle() {
  if (_closeOnDealloc == CloseOnDealloc::yes) closeFile();
}

Ref<NSFileHandle> NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketNativeHandle descriptor,
                                                                     CloseOnDealloc closeOnDealloc) {
  return Ref<NSFileHandle>::adopt(new NSFileHandle(std::move(descriptor), closeOnDealloc, std::nullopt));
}

void NSFileHandle::acceptConnectionInBackgroundAndNotify() {
  if (!_descriptor) return;
  if (!_acceptor) _acceptor = std::make_unique<ConnectionAcceptor>(_descriptor);
  _acceptor->acceptNext(
      [this](std::shared_ptr<Descriptor> connection) { postAccepted(std::move(connection)); });
}

void NSFileHandle::postAccepted(CFSocketNativeHandle connection) {
  const auto deadline = Device::current().clock->now() + readLimit;
  const auto accepted =
      Ref<NSFileHandle>::adopt(new NSFileHandle(std::move(connection), CloseOnDealloc::yes, deadline));
  NSNotificationCenter::defaultCenter().postNotificationName(
      NSFileHandleConnectionAcceptedNotification, this, {{NSFileHandleNotificationFileHandleItem, accepted}});
}

SocketReader& NSFileHandle::reader() {
  if (!_reader) _reader = std::make_unique<SocketReader>(_descriptor, _readDeadline);
  return *_reader;
}

void NSFileHandle::waitForDataInBackgroundAndNotify() {
  if (!_descriptor) return;
  reader().whenAvailable([this] {
    NSNotificationCenter::defaultCenter().postNotificationName(NSFileHandleDataAvailableNotification, this);
  });
}

NSData NSFileHandle::availableData() {
  return _descriptor ? reader().availableData() : NSData();
}

bool NSFileHandle::writeData(const NSData& data) {
  if (!_descriptor) return false;
  if (!_writer) _writer = std::make_unique<SocketWriter>(_descriptor);
  return _writer->write(data);
}

void NSFileHandle::closeFile() {
  _acceptor.reset();
  _reader.reset();
  const auto descriptor = std::exchange(_descriptor, nullptr);
  if (_writer) {
    ClosingConnection::close(descriptor, std::move(_writer));
  } else if (descriptor) {
    descriptor->close();
  }
}

}  // namespace quaverly
