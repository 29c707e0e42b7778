#pragma once

#include <functional>
#include <vector>

#include "Platform/Foundation/NSObject.h"
#include "Platform/StoreServices/SSDownload.h"

namespace quaverly {

inline constexpr const char* StoreServicesFramework =
    "/System/Library/PrivateFrameworks/StoreServices.framework";

/// What stands behind the manager: the host's download service.
class SSDownloadService {
 public:
  virtual ~SSDownloadService() = default;

  /// Takes over all that the downloads need before it returns: their metadata, their requests and a copy of
  /// the artwork that they name, whose files the next song overwrites. Completes none of them from inside the
  /// call, since their completion blocks are set afterwards. Main thread.
  virtual void addDownloads(const std::vector<Ref<SSDownload>>& downloads) = 0;
};

/// The manager that downloads are added to.
class SSDownloadManager : public NSObject {
 public:
  using Completion = std::function<void()>;

  /// The manager for music downloads; the same object at each call.
  static Ref<SSDownloadManager> IPodDownloadManager();

  /// Hands the downloads to the service; without one they are dropped.
  void addDownloadsCompletionBlock(const std::vector<Ref<SSDownload>>& downloads, Completion completion);

  /// The service must outlive its registration; null takes it away.
  static void registerService(SSDownloadService* service);
};

}  // namespace quaverly
