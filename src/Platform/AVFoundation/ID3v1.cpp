#include "Platform/AVFoundation/ID3v1.h"

#include <string>

#include "Platform/AVFoundation/ID3Genre.h"
#include "Platform/AVFoundation/ID3Text.h"

namespace quaverly::tags {
namespace {

/// A field without the zeros or spaces that fill it up.
std::string textIn(Bytes tag, ID3v1::Range range) {
  std::string text = decodeID3Text(ID3Encoding::latin1, tag.subspan(range.offset, range.length));
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace

void ID3v1::read(Bytes tag, TagContents& contents) {
  contents.set(&TagContents::title, textIn(tag, title));
  contents.set(&TagContents::artist, textIn(tag, artist));
  contents.set(&TagContents::album, textIn(tag, album));
  contents.set(&TagContents::year, textIn(tag, year));
  contents.set(&TagContents::genre, genreNamed(tag[genre.offset]).value_or(""));
  const Bytes number = tag.subspan(track.offset, track.length);
  if (number[0] == 0 && number[1] != 0) contents.set(&TagContents::track, std::to_string(number[1]));
}

}  // namespace quaverly::tags
