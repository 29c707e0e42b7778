#include "Cores/QVImporter.h"

#include "Other/QVClasses.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSBundle.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/StoreServices/SSDownloadManager.h"
#include "Platform/UIKit/UIDevice.h"

namespace quaverly {
namespace {

constexpr const char* localURLPrefix = "http://localhost:8080/qvtolmarinimporter.";
/// The import server answers this ending alone, whatever the file is.
constexpr const char* fileExtension = "mp3";
constexpr const char* description = "Imported with Quaverly by Ferrowin";
constexpr const char* identifier = "com.tolmarin.quaverly";

bool isPresent(const std::optional<std::string>& value) {
  return value && NSStringLength(*value) != 0;
}

int32_t intValue(const std::optional<std::string>& number) {
  return NSStringIntValue(number.value_or(""));
}

}  // namespace

bool QVImporter::systemTakesItemIdentifiers() {
  const float version = NSStringFloatValue(UIDevice::currentDevice().systemVersion());
  return static_cast<double>(version) > 8.3;
}

std::string QVImporter::randomItemID() {
  const auto random = static_cast<float>(Device::current().random());
  return std::to_string(static_cast<int32_t>(random * 0x1p-32F * 905794176.0F + 10000000.0F));
}

Ref<QVImporter> QVImporter::importerForSong(const iTunesSongItem& song, std::optional<NSURLRequest> request) {
  auto importer = make<QVImporter>();
  importer->setTitle(song.title());
  importer->setArtist(song.artist());
  importer->setAlbum(song.album());
  importer->setGenre(song.genre());
  importer->setThumbnail(song.artworkMedium());
  importer->setArtwork(song.artworkHigh());
  importer->setIndexInCollection(song.indexInCollection());
  importer->setReleaseYear(song.releaseYear());
  importer->setDownloadRequest(std::move(request));
  if (systemTakesItemIdentifiers()) importer->setItemID(randomItemID());
  return importer;
}

void QVImporter::import() {
  rewriteRequestURL();
  const Ref<NSBundle> framework = NSBundle::bundleWithPath(StoreServicesFramework);
  send(framework, &NSBundle::load);
  const auto metadata = allocFromString<SSDownloadMetadata>("SSDownloadMetadata");
  if (metadata) describe(metadata);
  handOver(metadata);
  send(framework, &NSBundle::unload);
}

void QVImporter::rewriteRequestURL() {
  if (!_downloadRequest) return;
  const std::string& path = _downloadRequest->URL().absoluteString();
  if (auto url = NSURL::URLWithString(std::string(localURLPrefix) + fileExtension + "?" + path)) {
    _downloadRequest->setURL(std::move(*url));
  }
}

// The order of the setters is part of the contract.
void QVImporter::describe(const Ref<SSDownloadMetadata>& metadata) const {
  metadata->initWithKind("song");
  metadata->setPurchaseDate(Device::current().clock->date());
  if (_downloadRequest) metadata->setPrimaryAssetURL(_downloadRequest->URL());
  metadata->setShortDescription(description);
  metadata->setLongDescription(description);
  describeSong(metadata);
  describePurchase(metadata);
}

void QVImporter::describeSong(const Ref<SSDownloadMetadata>& metadata) const {
  if (isPresent(_title)) {
    metadata->setTitle(_title);
    metadata->setSortTitle(_title);
  }
  if (isPresent(_artist)) {
    metadata->setArtistName(_artist);
    metadata->setSortArtistName(_artist);
  }
  if (isPresent(_album)) {
    metadata->setCollectionName(_album);
    metadata->setSortCollectionName(_album);
  }
  metadata->setIndexInCollection(intValue(_indexInCollection));
  metadata->setGenre(_genre);
  metadata->setReleaseYear(intValue(_releaseYear));
  if (isPresent(_thumbnail)) metadata->setThumbnailImageURL(NSURL::URLWithString(*_thumbnail));
  if (isPresent(_artwork)) metadata->setFullSizeImageURL(NSURL::URLWithString(*_artwork));
}

void QVImporter::describePurchase(const Ref<SSDownloadMetadata>& metadata) const {
  metadata->setFileExtension(fileExtension);
  metadata->setArtworkIsPrerendered(true);
  metadata->setAutomaticDownload(false);
  metadata->setRedownloadDownload(false);
  metadata->setCompilation(false);
  metadata->setRental(false);
  metadata->setSample(false);
  metadata->setGenre("");  // the library keeps no genre, whatever was entered
  metadata->setBundleIdentifier(identifier);
  metadata->setTransactionIdentifier(identifier);
  metadata->setCancelDownloadURL(NSURL::URLWithString("file:///"));
  if (systemTakesItemIdentifiers() && isPresent(_itemID)) metadata->setItemIdentifier(intValue(_itemID));
}

void QVImporter::handOver(const Ref<SSDownloadMetadata>& metadata) const {
  const bool hasManager = NSClassFromString<SSDownloadManager>("SSDownloadManager") != nullptr;
  const auto asset = allocFromString<SSDownloadAsset>("SSDownloadAsset");
  const auto download = allocFromString<SSDownload>("SSDownload");
  if (!hasManager || !metadata || !asset || !download) return;

  if (_downloadRequest) asset->initWithURLRequest(*_downloadRequest);
  download->initWithDownloadMetadata(metadata);
  download->addAssetForType(asset, "media");
  SSDownloadManager::IPodDownloadManager()->addDownloadsCompletionBlock({download}, nullptr);
  // Both live until the download has ended; letting go of this block then lets go of them.
  download->setDownloadHandlerCompletionBlock(nullptr, [download, asset] {});
}

}  // namespace quaverly
