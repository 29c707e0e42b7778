#include <ranges>

#include "Platform/Foundation/NSClass.h"
#include "Platform/StoreServices/SSDownload.h"
#include "Platform/StoreServices/SSDownloadManager.h"
#include "Platform/StoreServices/SSDownloadMetadata.h"

namespace quaverly {
namespace {

const NSClassOf<SSDownloadMetadata> metadataClass("SSDownloadMetadata", StoreServicesFramework);
const NSClassOf<SSDownloadAsset> assetClass("SSDownloadAsset", StoreServicesFramework);
const NSClassOf<SSDownload> downloadClass("SSDownload", StoreServicesFramework);
const NSClassOf<SSDownloadManager> managerClass("SSDownloadManager", StoreServicesFramework);

SSDownloadService* service = nullptr;

}  // namespace

SSDownloadMetadata* SSDownloadMetadata::initWithKind(std::string kind) {
  set("kind", Text(std::move(kind)));
  return this;
}

const SSDownloadMetadata::Value& SSDownloadMetadata::latest(std::string_view property) const {
  static const Value nothing;
  for (const auto& [name, value] : std::views::reverse(_assignments)) {
    if (name == property) return value;
  }
  return nothing;
}

SSDownloadAsset* SSDownloadAsset::initWithURLRequest(const NSURLRequest& request) {
  _request = request;
  return this;
}

SSDownload* SSDownload::initWithDownloadMetadata(Ref<SSDownloadMetadata> metadata) {
  _metadata = std::move(metadata);
  return this;
}

void SSDownload::addAssetForType(Ref<SSDownloadAsset> asset, std::string type) {
  if (asset) _assets.insert_or_assign(std::move(type), std::move(asset));
}

void SSDownload::setDownloadHandlerCompletionBlock(Handler handler, Handler completion) {
  _handler = std::move(handler);
  _completion = std::move(completion);
}

Ref<SSDownloadAsset> SSDownload::assetForType(std::string_view type) const {
  const auto found = _assets.find(type);
  return found == _assets.end() ? nullptr : found->second;
}

void SSDownload::complete() {
  const Ref<SSDownload> self(this);  // the block may hold the last references to this download
  const Handler completion = std::exchange(_completion, nullptr);
  _handler = nullptr;
  if (completion) completion();
}

Ref<SSDownloadManager> SSDownloadManager::IPodDownloadManager() {
  static const Ref<SSDownloadManager> manager = make<SSDownloadManager>();
  return manager;
}

void SSDownloadManager::addDownloadsCompletionBlock(const std::vector<Ref<SSDownload>>& downloads,
                                                    Completion completion) {
  if (service) service->addDownloads(downloads);
  if (completion) completion();
}

void SSDownloadManager::registerService(SSDownloadService* newService) {
  service = newService;
}

}  // namespace quaverly
