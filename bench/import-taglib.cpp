// The plain way to file songs: copies each file, lets TagLib write its tags, flushes it, and gives it its
// name.
//
//     import-taglib FOLDER ALBUM COVER FILE…

#include <attachedpictureframe.h>
#include <fcntl.h>
#include <id3v2tag.h>
#include <mpegfile.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

bool copySong(const fs::path& from, const fs::path& to) {
  const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
  const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  std::vector<char> piece(size_t{256} << 10);
  ssize_t count = 0;
  while ((count = read(source, piece.data(), piece.size())) > 0) {
    if (write(target, piece.data(), static_cast<size_t>(count)) != count) count = -1;
  }
  close(source);
  return close(target) == 0 && count == 0;
}

/// Returns the name for the library.
std::string retag(const fs::path& path, const std::string& album, const TagLib::ByteVector& cover) {
  TagLib::MPEG::File file(path.c_str(), false);
  auto* tag = file.ID3v2Tag(true);
  tag->setAlbum(TagLib::String(album, TagLib::String::UTF8));
  tag->removeFrames("APIC");
  auto* picture = new TagLib::ID3v2::AttachedPictureFrame;  // the tag's to delete
  picture->setMimeType("image/jpeg");
  picture->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
  picture->setPicture(cover);
  tag->addFrame(picture);
  file.save(TagLib::MPEG::File::AllTags, TagLib::File::StripNone, TagLib::ID3v2::v3);
  char number[16];
  std::snprintf(number, sizeof number, "%02u ", tag->track());
  return number + tag->title().to8Bit(true) + ".mp3";
}

void flush(const fs::path& path, int flags) {
  const int descriptor = open(path.c_str(), flags | O_CLOEXEC);
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 5) return 2;
  const fs::path folder = arguments[1];
  const std::string album = arguments[2];
  std::ifstream coverFile(arguments[3], std::ios::binary);
  const std::string cover{std::istreambuf_iterator<char>(coverFile), {}};
  fs::create_directories(folder);
  for (const fs::path song : std::span(arguments + 4, arguments + count)) {
    const auto part = folder / "song.part";
    if (!copySong(song, part)) return 1;
    const auto name = retag(part, album, {cover.data(), static_cast<unsigned>(cover.size())});
    flush(part, O_RDWR);
    fs::rename(part, folder / name);
  }
  flush(folder, O_RDONLY | O_DIRECTORY);
}
