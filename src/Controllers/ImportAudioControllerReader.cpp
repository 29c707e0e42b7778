#include <utility>

#include "Controllers/ImportAudioController.h"
#include "Other/StagedArtwork.h"
#include "Platform/AVFoundation/AVURLAsset.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/UIKit/UIImage.h"

namespace quaverly {
namespace {

constexpr const char* stagedArtworkName = "current_album_image_local.jpg";
constexpr double artworkQuality = 1.0;

using Text = iTunesSongItem::Text;
using Value = AVMetadataItem::Value;

/// A value as the record can hold it: text as it is, and data as if it were text.
Text recordedText(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* data = std::get_if<NSData>(&value)) return std::string(data->text());
  return std::nullopt;
}

/// The bytes of a picture; a dictionary holds them under "data".
NSData pictureData(const Value& value) {
  if (const auto* data = std::get_if<NSData>(&value)) return *data;
  const auto* dictionary = std::get_if<AVMetadataItem::Dictionary>(&value);
  const auto found = dictionary ? dictionary->find("data") : AVMetadataItem::Dictionary::const_iterator();
  return dictionary && found != dictionary->end() ? found->second : NSData();
}

/// Replaces the staged artwork by the picture; whatever fails leaves no file there.
void stageArtwork(const NSData& picture, const std::string& stagedPath) {
  const auto image = UIImage::imageWithData(picture);
  const auto& files = NSFileManager::defaultManager();
  if (files.fileExistsAtPath(stagedPath)) files.removeItemAtPath(stagedPath);
  const auto encoded = image ? UIImageJPEGRepresentation(*image, artworkQuality) : std::nullopt;
  if (encoded) static_cast<void>(encoded->writeToFileAtomically(stagedPath));
}

/// Text whose meaning only its own format knows is sorted by its length: four characters are a year, fewer a
/// track number, more a genre.
void setFieldByLength(iTunesSongItem& song, const std::string& text) {
  const size_t length = NSStringLength(text);
  if (length == 4) {
    song.setReleaseYear(text);
  } else if (length < 4) {
    song.setIndexInCollection(text);
  } else {
    song.setGenre(text);
  }
}

}  // namespace

iTunesSongItem ImportAudioController::songItemFromPath(const std::string& path) {
  iTunesSongItem song;
  if (!NSFileManager::defaultManager().isReadableFileAtPath(path)) return song;
  const auto asset = AVURLAsset::URLAssetWithURLOptions(NSURL::fileURLWithPath(path), nullptr);
  for (const auto& format : asset->availableMetadataFormats()) {
    for (const auto& item : asset->metadataForFormat(format)) readMetadataItemIntoSongItem(item, song);
  }
  return song;
}

void ImportAudioController::readMetadataItemIntoSongItem(const AVMetadataItem& item, iTunesSongItem& song) {
  const auto& key = item.commonKey();
  if (key == "title") {
    song.setTitle(recordedText(item.value()));
  } else if (key == "artist") {
    song.setArtist(recordedText(item.value()));
  } else if (key == "albumName") {
    song.setAlbum(recordedText(item.value()));
  } else if (key == "artwork") {
    readArtwork(item, song);
  } else if (const auto* text = std::get_if<std::string>(&item.value()); text && !key) {
    setFieldByLength(song, *text);
  }
}

void ImportAudioController::readArtwork(const AVMetadataItem& item, iTunesSongItem& song) {
  const auto stagedPath = NSStringByAppendingPathComponent(quaverlyTempDirectory(), stagedArtworkName);
  stageArtwork(pictureData(item.value()), stagedPath);
  const auto url = stagedArtworkURL(stagedPath);
  song.setArtworkLow(url);
  song.setArtworkMedium(url);
  song.setArtworkHigh(url);
}

std::string ImportAudioController::quaverlyTempDirectory() {
  return temporaryArtworkDirectory();
}

}  // namespace quaverly
