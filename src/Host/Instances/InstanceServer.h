#pragma once

#include <list>
#include <memory>
#include <set>
#include <string>

#include "Host/Instances/LineChannel.h"
#include "Host/Library/DownloadService.h"
#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"

namespace quaverly::instances {

/// Lets other programs of this user on the same data folder hand their downloads to this one's service, and
/// ask where its page is. docs/instances.md has the lines that they exchange. Main thread.
class InstanceServer : public library::DownloadObserver {
 public:
  static constexpr size_t maximumClients = 64;

  /// `service` must outlive it. `address` is what others are told of the page.
  InstanceServer(const library::LibrarySettings& settings, library::DownloadService& service,
                 std::string address);
  ~InstanceServer() override;
  InstanceServer(const InstanceServer&) = delete;
  InstanceServer& operator=(const InstanceServer&) = delete;

  /// Only for who has the turn to serve on the data folder.
  [[nodiscard]] library::MaybeFailure start();

  void downloadStarted(const library::DownloadRecord& record) override;
  void downloadProgressed(library::DownloadID id, const library::DownloadProgress& progress) override;
  void downloadEnded(const library::DownloadRecord& record) override;
  void serviceWaits(const std::string& why) override;
  void serviceStopped(const std::vector<library::DownloadRecord>& notDone) override;

 private:
  struct Client {
    std::unique_ptr<LineChannel> channel;
    bool mayImport = false;
    std::set<library::DownloadID> downloads;
  };
  void acceptNext();
  void add(const std::shared_ptr<Descriptor>& connection);
  void remove(const Client& client);
  void answer(Client& client, const std::string& line);
  std::string answerTo(const std::string& library, Client& client) const;
  void take(Client& client, library::DownloadID id);
  void tell(library::DownloadID id, const std::string& line);

  library::LibrarySettings _settings;
  library::DownloadService& _service;
  std::string _address;
  std::unique_ptr<ConnectionAcceptor> _acceptor;
  std::list<Client> _clients;
};

}  // namespace quaverly::instances
