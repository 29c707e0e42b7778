#include "Host/Library/FilingPlan.h"

#include <linux/limits.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "Host/Library/ContentHasher.h"
#include "Host/Library/FileDescriptor.h"
#include "Host/Library/FileNames.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

/// Shorter names than this would say nothing, and leave no room for a number and an ending.
constexpr size_t shortestNameLimit = 32;

/// What is left for each of the three names below the library.
size_t longestNameIn(const std::string& libraryFolder) {
  constexpr size_t slashesAndEnd = 4;
  const size_t taken = std::min<size_t>(libraryFolder.size() + slashesAndEnd, PATH_MAX);
  return std::min(longestFileName, (PATH_MAX - taken) / 3);
}

std::string folderName(const std::optional<std::string>& text, const char* missing, size_t limit) {
  std::string name = safeFileName(text.value_or(""), limit);
  return name.empty() ? missing : name;
}

std::string nameWithoutEnding(const std::string& path) {
  const std::string name = NSStringLastPathComponent(path);
  const size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

/// "07 Title"; a song without a title is called like its source.
std::string stemOf(const SongOffer& offer) {
  std::string title = offer.wanted.title.value_or(nameWithoutEnding(offer.sourcePath));
  if (safeFileName(title).empty()) title = "Unknown Title";
  if (offer.wanted.trackNumber <= 0) return title;
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "%02d ", offer.wanted.trackNumber);
  return number.data() + title;
}

/// The name with the number of its kind: "Title.mp3", "Title (2).mp3" and so on.
std::string numberedName(const std::string& stem, const char* extension, size_t number, size_t limit) {
  if (number == 1) return safeFileName(stem, extension, limit);
  const std::string suffix = " (" + std::to_string(number) + ")";
  const size_t room = limit - suffix.size() - std::string_view(extension).size() - 1;
  return safeFileName(stem, room).append(suffix).append(".").append(extension);
}

std::string coverOf(const SongOffer& offer) {
  switch (offer.artwork.kind) {
    case ArtworkChange::Kind::keep:
      return offer.file.hasArtwork ? "kept" : "";
    case ArtworkChange::Kind::remove:
      return "";
    case ArtworkChange::Kind::replace:
      return contentHash(offer.artwork.image.bytes()).hex();
  }
  return "";
}

bool isRegularFile(const std::string& path) {
  struct stat attributes {};
  return stat(path.c_str(), &attributes) == 0 && S_ISREG(attributes.st_mode);
}

bool willHaveArtwork(const SongOffer& offer) {
  switch (offer.artwork.kind) {
    case ArtworkChange::Kind::keep:
      return offer.file.hasArtwork;
    case ArtworkChange::Kind::remove:
      return false;
    case ArtworkChange::Kind::replace:
      return true;
  }
  return false;
}

/// Whether a file of the library is the song that would be filed.
bool holdsSameSong(const std::string& path, const SongOffer& offer) {
  const auto file = FileDescriptor::openForReading(path);
  const auto song = file && file.isRegularFile() ? inspectSong(file.get()) : std::nullopt;
  return song && song->tags == offer.after && song->hasArtwork == willHaveArtwork(offer) &&
         audioHash(file.get(), *song) == offer.audio;
}

}  // namespace

FilingPlanner::FilingPlanner(std::string libraryFolder, Catalogue& catalogue)
    : _libraryFolder(std::move(libraryFolder)), _catalogue(catalogue) {}

Result<FilingPlan> FilingPlanner::plan(const SongOffer& offer) const {
  const size_t longestName = longestNameIn(_libraryFolder);
  if (longestName < shortestNameLimit) return Failure{"The path of the library folder is too long."};
  FilingPlan plan;
  plan.before = offer.file.tags;
  plan.after = offer.after;
  plan.cover = coverOf(offer);
  chooseName(offer, longestName, plan);
  auto same = sameSong(offer, plan);
  if (!same) return same.failure();
  plan.duplicateOf = std::move(*same);
  return plan;
}

void FilingPlanner::chooseName(const SongOffer& offer, size_t longestName, FilingPlan& plan) const {
  const auto existingOr = [this](const std::string& folder, std::string name) {
    auto same = _names.sameName(folder, name);
    return same ? std::move(*same) : std::move(name);
  };
  plan.artistFolder =
      existingOr(_libraryFolder, folderName(offer.wanted.artist, "Unknown Artist", longestName));
  const std::string artistPath = _libraryFolder + "/" + plan.artistFolder;
  plan.albumFolder = existingOr(artistPath, folderName(offer.wanted.album, "Unknown Album", longestName));
  const std::string folder = artistPath + "/" + plan.albumFolder;
  const std::string stem = stemOf(offer);
  for (size_t number = 1;; ++number) {
    plan.fileName = numberedName(stem, fileExtension(offer.file.kind), number, longestName);
    const auto taken = _names.sameName(folder, plan.fileName);
    if (!taken) break;
    if (!plan.namesake) plan.namesake = folder + "/" + *taken;
  }
  plan.path = folder + "/" + plan.fileName;
}

Result<std::optional<std::string>> FilingPlanner::sameSong(const SongOffer& offer,
                                                           const FilingPlan& plan) const {
  const auto songs = _catalogue.songsWithAudio(offer.audio);
  if (!songs) return songs.failure();
  for (const auto& song : *songs) {
    if (song.tags == plan.after && song.cover == plan.cover && isFiledHere(song))
      return std::optional(song.path);
  }
  const auto isNamesake = [&](const SongRecord& song) { return song.path == plan.namesake; };
  // Filed before the catalogue was lost, or put there by hand.
  if (plan.namesake && std::ranges::none_of(*songs, isNamesake) && holdsSameSong(*plan.namesake, offer)) {
    return plan.namesake;
  }
  for (const auto& song : _promises) {
    if (song.audio == offer.audio && song.tags == plan.after && song.cover == plan.cover) {
      return std::optional(song.path);
    }
  }
  return std::optional<std::string>();
}

bool FilingPlanner::isFiledHere(const SongRecord& song) const {
  return song.path.starts_with(_libraryFolder + "/") && isRegularFile(song.path);
}

void FilingPlanner::promise(const SongOffer& offer, const FilingPlan& plan) {
  const std::string artistPath = _libraryFolder + "/" + plan.artistFolder;
  _names.promise(_libraryFolder, plan.artistFolder);
  _names.promise(artistPath, plan.albumFolder);
  _names.promise(artistPath + "/" + plan.albumFolder, plan.fileName);
  _promises.push_back({offer.audio, plan.after, plan.cover, plan.path});
}

}  // namespace quaverly::library
