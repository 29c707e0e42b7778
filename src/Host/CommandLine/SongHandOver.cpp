#include "Host/CommandLine/SongHandOver.h"

#include <fcntl.h>

#include <algorithm>

#include "Cores/QVImporter.h"
#include "Host/Library/SongTags.h"
#include "Other/StagedArtwork.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/UIKit/UIImage.h"

namespace quaverly::commandline {
namespace {

using library::Failure;
using library::MaybeFailure;

constexpr const char* importableEnding = "mp3";
/// The name under which the editor stages a picture that a person picked.
constexpr const char* pickedArtworkName = "current_album_image.png";

Ref<ImportAudioController> makeBrowser() {
  auto browser = make<ImportAudioController>();
  browser->init();
  return browser;
}

/// Whether a text says a number that a tag can hold; no text at all says none.
bool isNumber(const std::string& text, int32_t largest) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return std::ranges::all_of(text, isDigit) && NSStringIntValue(text) <= largest;
}

/// What the editor's field would hold: the edit, or the song's own text; a field has no absent text.
void fill(iTunesSongItem& song, const iTunesSongItem::Text& (iTunesSongItem::*get)() const,
          void (iTunesSongItem::*set)(iTunesSongItem::Text), const std::optional<std::string>& edit = {}) {
  (song.*set)(edit ? *edit : (song.*get)().value_or(""));
}

/// The request that the browser would make for the file.
std::optional<NSURLRequest> requestFor(const std::string& devicePath) {
  auto url = NSURL::URLWithString(NSStringByAddingPercentEscapesForQuery(devicePath));
  return url ? std::optional(NSURLRequest(std::move(*url))) : std::nullopt;
}

}  // namespace

SongHandOver::SongHandOver(HostDevice& device, const ImportOptions& options, const Console& console)
    : _device(device), _options(options), _console(console), _browser(makeBrowser()) {}

MaybeFailure SongHandOver::prepareArtwork() {
  if (!_options.artwork) return std::nullopt;
  const int descriptor = open(_options.artwork->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return Failure{"This picture cannot be read. Check its name and permissions."};
  const auto file = NSData::dataWithDescriptor(descriptor);
  const auto picture = file ? UIImage::imageWithData(*file) : nullptr;
  if (picture) _artwork = UIImageJPEGRepresentation(*picture, 1.0);
  if (!_artwork) return Failure{"This is no picture that can be used. Name a JPEG or a PNG file."};
  return std::nullopt;
}

MaybeFailure SongHandOver::handOver(const std::string& file) {
  const auto reached = reachFile(file, _device.outsideFiles());
  if (!reached) return reached.failure();
  if (!file.ends_with(importableEnding)) {
    return Failure{"Only files whose name ends in \"mp3\" can be imported. Rename it if it is one."};
  }
  iTunesSongItem song = _browser->songItemFromPath(reached->devicePath);
  edit(song);
  remarkOnNumbers(file, song);
  QVImporter::importerForSong(song, requestFor(reached->devicePath))->import();
  return std::nullopt;
}

void SongHandOver::edit(iTunesSongItem& song) const {
  using Song = iTunesSongItem;
  fill(song, &Song::title, &Song::setTitle, _options.title);
  fill(song, &Song::artist, &Song::setArtist, _options.artist);
  fill(song, &Song::album, &Song::setAlbum, _options.album);
  fill(song, &Song::genre, &Song::setGenre);
  fill(song, &Song::releaseYear, &Song::setReleaseYear, _options.year);
  fill(song, &Song::indexInCollection, &Song::setIndexInCollection, _options.track);
  if (_artwork) stageArtwork(song);
}

// As the editor stages a picked picture; whether the write succeeds shows when the service copies the file.
void SongHandOver::stageArtwork(iTunesSongItem& song) const {
  const std::string path = _browser->quaverlyTempDirectory() + pickedArtworkName;
  static_cast<void>(_artwork->writeToFileAtomically(path));
  const std::string url = stagedArtworkURL(path);
  song.setArtworkLow(url);
  song.setArtworkMedium(url);
  song.setArtworkHigh(url);
}

void SongHandOver::remarkOnNumbers(const std::string& file, const iTunesSongItem& song) const {
  const auto remark = [&](const char* what, const char* option, const std::optional<std::string>& text,
                          int32_t largest) {
    if (!text || isNumber(*text, largest)) return;
    const int32_t value = NSStringIntValue(*text);
    const std::string read = value <= 0 || value > largest ? "none" : std::to_string(value);
    _console.remark(file, std::string("The ") + what + " \"" + *text +
                              "\" is no number that a tag can hold and is read as " + read +
                              ". Give another with " + option + ".");
  };
  remark("year", "--year", song.releaseYear(), library::largestYear);
  remark("track number", "--track", song.indexInCollection(), library::largestTrackNumber);
}

}  // namespace quaverly::commandline
