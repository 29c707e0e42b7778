#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"
#include "Platform/StoreServices/SSDownloadMetadata.h"

namespace quaverly {

/// What a download fetches.
class SSDownloadAsset : public NSObject {
 public:
  /// Keeps a copy of the request, as it is now.
  SSDownloadAsset* initWithURLRequest(const NSURLRequest& request);
  const NSURLRequest* URLRequest() const { return _request ? &*_request : nullptr; }

 private:
  std::optional<NSURLRequest> _request;
};

/// One download: what it is, and what it fetches.
class SSDownload : public NSObject {
 public:
  using Handler = std::function<void()>;

  SSDownload* initWithDownloadMetadata(Ref<SSDownloadMetadata> metadata);
  void addAssetForType(Ref<SSDownloadAsset> asset, std::string type);

  /// `completion` runs once, on whatever thread the service chooses, when the download has ended in any way;
  /// it is let go of afterwards, and with it whatever it holds. Never runs from inside this call.
  void setDownloadHandlerCompletionBlock(Handler handler, Handler completion);

  const Ref<SSDownloadMetadata>& metadata() const { return _metadata; }
  /// Null when there is no asset of that type.
  Ref<SSDownloadAsset> assetForType(std::string_view type) const;

  /// For the service: runs the completion block, the first time only.
  void complete();

 private:
  Ref<SSDownloadMetadata> _metadata;
  std::map<std::string, Ref<SSDownloadAsset>, std::less<>> _assets;
  Handler _handler;
  Handler _completion;
};

}  // namespace quaverly
