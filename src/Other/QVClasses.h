#pragma once

#include <optional>
#include <string>
#include <utility>

namespace quaverly {

/// The descriptive metadata of one song: from the tag reader to the editor and from there to the importer.
///
/// A value. Every field is text or absent, numbers too: they travel as they were read or typed.
class iTunesSongItem {
 public:
  using Text = std::optional<std::string>;

  const Text& title() const { return _title; }
  void setTitle(Text title) { _title = std::move(title); }

  const Text& artist() const { return _artist; }
  void setArtist(Text artist) { _artist = std::move(artist); }

  const Text& album() const { return _album; }
  void setAlbum(Text album) { _album = std::move(album); }

  const Text& genre() const { return _genre; }
  void setGenre(Text genre) { _genre = std::move(genre); }

  const Text& releaseYear() const { return _releaseYear; }
  void setReleaseYear(Text releaseYear) { _releaseYear = std::move(releaseYear); }

  /// The track number.
  const Text& indexInCollection() const { return _indexInCollection; }
  void setIndexInCollection(Text indexInCollection) { _indexInCollection = std::move(indexInCollection); }

  const Text& duration() const { return _duration; }
  void setDuration(Text duration) { _duration = std::move(duration); }

  const Text& ID() const { return _ID; }
  void setID(Text ID) { _ID = std::move(ID); }

  /// The artwork fields hold the URL string of a staged image file, never image bytes.
  const Text& artworkLow() const { return _artworkLow; }
  void setArtworkLow(Text artworkLow) { _artworkLow = std::move(artworkLow); }

  const Text& artworkMedium() const { return _artworkMedium; }
  void setArtworkMedium(Text artworkMedium) { _artworkMedium = std::move(artworkMedium); }

  const Text& artworkHigh() const { return _artworkHigh; }
  void setArtworkHigh(Text artworkHigh) { _artworkHigh = std::move(artworkHigh); }

  bool operator==(const iTunesSongItem&) const = default;

 private:
  Text _title;
  Text _artist;
  Text _album;
  Text _artworkLow;
  Text _artworkMedium;
  Text _artworkHigh;
  Text _genre;
  Text _indexInCollection;
  Text _duration;
  Text _releaseYear;
  Text _ID;
};

/// One entry of a folder listing. A value; never changed after the listing that made it.
class FileItem {
 public:
  using Text = std::optional<std::string>;

  bool isDirectory() const { return _isDirectory; }
  void setIsDirectory(bool isDirectory) { _isDirectory = isDirectory; }

  /// Whether the entry can be imported; false for every directory.
  bool isAudioFile() const { return _isAudioFile; }
  void setIsAudioFile(bool isAudioFile) { _isAudioFile = isAudioFile; }

  /// The absolute device path: bytes, which need not be UTF-8.
  const Text& path() const { return _path; }
  void setPath(Text path) { _path = std::move(path); }

  /// The size as a person reads it; absent for a directory.
  const Text& size() const { return _size; }
  void setSize(Text size) { _size = std::move(size); }

  /// The modification time as "dd/MM/yyyy h:mm a"; absent when it cannot be told.
  const Text& date() const { return _date; }
  void setDate(Text date) { _date = std::move(date); }

  bool operator==(const FileItem&) const = default;

 private:
  bool _isDirectory = false;
  bool _isAudioFile = false;
  Text _path;
  Text _size;
  Text _date;
};

}  // namespace quaverly
