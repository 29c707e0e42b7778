#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/NSData.h"

namespace quaverly::tags {

/// A picture in a tag, with the number that ID3v2 has for its kind.
struct Picture {
  static constexpr uint8_t frontCover = 3;

  uint8_t kind = 0;
  NSData data;
};

/// What one tag of a file says about the song, in the terms of the screen. Absent is what it does not say.
struct TagContents {
  using Field = std::optional<std::string> TagContents::*;

  std::string format;  ///< the tag's format by name, such as "ID3v2"
  std::optional<std::string> title{};
  std::optional<std::string> artist{};
  std::optional<std::string> album{};
  std::optional<std::string> genre{};
  std::optional<std::string> track{};  ///< as written, without a total
  std::optional<std::string> year{};   ///< four digits
  std::vector<Picture> pictures{};     ///< in file order
  bool isEmpty() const;

  static constexpr Field texts[] = {&TagContents::title, &TagContents::artist, &TagContents::album,
                                    &TagContents::genre, &TagContents::track,  &TagContents::year};

  /// Puts a text as the tag has it into a field, in the field's terms. An empty text and one that has no
  /// meaning for the field leave it as it is; only a track number can be there and empty.
  void set(Field field, std::string text);
};

/// Which picture stands for the song: the last front cover, or else the last picture. Null without any.
const Picture* shownPicture(const std::vector<Picture>& pictures);

/// "07" of "07/12".
std::string trackNumberOf(std::string_view text);

/// The year of a date: its first four digits, "2014" of "2014-05-01" and of "01.05.2014".
std::optional<std::string> yearOf(std::string_view text);

}  // namespace quaverly::tags
