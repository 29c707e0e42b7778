#include "Host/Instances/InstanceServer.h"

#include <unistd.h>

#include <utility>

#include "Host/Instances/InstanceSocket.h"
#include "Host/Instances/JsonLines.h"

namespace quaverly::instances {
namespace {

using library::DownloadRecord;

std::string endLine(const DownloadRecord& record) {
  return lineOf({{"event", "ended"},
                 {"download", record.id},
                 {"state", nameOf(record.state)},
                 {"reason", record.reason}});
}

}  // namespace

InstanceServer::InstanceServer(const library::LibrarySettings& settings, library::DownloadService& service,
                               std::string address)
    : _settings(settings), _service(service), _address(std::move(address)) {
  _service.addObserver(this);
}

InstanceServer::~InstanceServer() {
  _service.removeObserver(this);
  if (_acceptor) removeSocketIn(_settings.dataFolder);
}

library::MaybeFailure InstanceServer::start() {
  auto listener = listenIn(_settings.dataFolder);
  if (!listener) return listener.failure();
  _acceptor = std::make_unique<ConnectionAcceptor>(*listener);
  acceptNext();
  return std::nullopt;
}

void InstanceServer::acceptNext() {
  _acceptor->acceptNext([this](const std::shared_ptr<Descriptor>& connection) {
    if (_clients.size() < maximumClients) add(connection);
    acceptNext();
  });
}

void InstanceServer::add(const std::shared_ptr<Descriptor>& connection) {
  auto& client = _clients.emplace_back();
  client.channel = std::make_unique<LineChannel>(
      connection, [this, &client](const std::string& line) { answer(client, line); },
      [this, &client] { remove(client); });
}

void InstanceServer::remove(const Client& client) {
  _clients.remove_if([&](const Client& each) { return &each == &client; });
}

void InstanceServer::answer(Client& client, const std::string& line) {
  const auto json = Json::parse(line, nullptr, false);
  if (!json.is_object()) return remove(client);
  const std::string ask = text(json, "ask");
  const auto download = json.find("take");
  if (ask == "address") {
    client.channel->send(lineOf({{"address", _address}, {"process", ::getpid()}}));
  } else if (ask == "import") {
    client.channel->send(answerTo(text(json, "library"), client));
  } else if (client.mayImport && download != json.end() && download->is_number_integer()) {
    take(client, download->get<library::DownloadID>());
  } else {
    remove(client);
  }
}

std::string InstanceServer::answerTo(const std::string& library, Client& client) const {
  // As the other side wrote it: what is not UTF-8 in a path reads the same on both.
  const auto own = Json::parse(lineOf({{"library", _settings.libraryFolder}}));
  client.mayImport = library == text(own, "library");
  return lineOf({{"answer", client.mayImport ? "ready" : "other library"},
                 {"library", _settings.libraryFolder},
                 {"process", ::getpid()}});
}

void InstanceServer::take(Client& client, library::DownloadID id) {
  const auto failure = _service.take(id);
  auto record = _service.catalogue().download(id);
  DownloadRecord known = record && *record ? **record : DownloadRecord{};
  known.id = id;
  if (failure) {
    known.state = library::DownloadState::failed;
    known.reason = failure->reason;
  }
  if (isFinal(known.state)) return client.channel->send(endLine(known));
  client.downloads.insert(id);
}

void InstanceServer::downloadStarted(const DownloadRecord& record) {
  tell(record.id, lineOf({{"event", "started"}, {"download", record.id}}));
}

void InstanceServer::downloadProgressed(library::DownloadID id, const library::DownloadProgress& progress) {
  tell(id, lineOf({{"event", "progressed"},
                   {"download", id},
                   {"bytes", progress.bytes},
                   {"total", progress.total},
                   {"bytesPerSecond", progress.bytesPerSecond}}));
}

void InstanceServer::downloadEnded(const DownloadRecord& record) {
  tell(record.id, endLine(record));
  for (auto& client : _clients) client.downloads.erase(record.id);
}

void InstanceServer::serviceWaits(const std::string& why) {
  for (auto& client : _clients) {
    if (client.mayImport) client.channel->send(lineOf({{"event", "waits"}, {"why", why}}));
  }
}

void InstanceServer::serviceStopped(const std::vector<DownloadRecord>&) {
  for (auto& client : _clients) {
    if (client.mayImport) client.channel->send(lineOf({{"event", "stopped"}}));
  }
}

void InstanceServer::tell(library::DownloadID id, const std::string& line) {
  for (auto& client : _clients) {
    if (client.downloads.contains(id)) client.channel->send(line);
  }
}

}  // namespace quaverly::instances
