#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::tags {

/// The 32 bytes that an APE tag ends with, and, from version 2 on, begins with.
struct APEFooter {
  static constexpr size_t length = 32;

  uint32_t itemsLength = 0;
  uint32_t items = 0;
  bool hasHeader = false;

  uint64_t tagLength() const { return uint64_t{itemsLength} + length + (hasHeader ? length : 0); }
  static std::optional<APEFooter> parse(Bytes bytes);
};

/// One item where it lies in the tag.
struct APEItem {
  std::string_view key;
  Bytes value;
  Bytes whole;
  bool isText = false;
};

/// Walks the items of an APE tag; ends at the first damaged one.
class APEItems {
 public:
  /// `tag` is the whole tag, its header (if any) and footer included.
  APEItems(const APEFooter& footer, Bytes tag);
  std::optional<APEItem> next();

 private:
  Bytes _rest;
};

/// The field that an item is for, by its key in any case; null for every other item.
TagContents::Field fieldOfAPEKey(std::string_view key);
/// Whether the key is that of a picture.
bool isAPEPictureKey(std::string_view key);

void readAPE(const APEFooter& footer, const FileBytes& tag, TagContents& contents);

}  // namespace quaverly::tags
