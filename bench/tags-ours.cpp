// Reads the metadata of every file of a folder as the bundle does. tags-ours FOLDER leave|load
// "leave" leaves covers in their files, as reading does; "load" brings them into memory, as showing one does.
#include <string_view>

#include "PassesOverFolder.h"
#include "Platform/AVFoundation/AVURLAsset.h"
#include "Platform/Device/Device.h"

namespace {

size_t lengthOf(const quaverly::AVMetadataItem::Value& value, bool loads) {
  if (const auto* text = std::get_if<std::string>(&value)) return text->size();
  const auto& picture = std::get<quaverly::AVMetadataItem::Dictionary>(value).at("data");
  return loads ? picture.bytes().size() : picture.length();
}

size_t readSong(const std::string& name, bool loads) {
  const auto url = quaverly::NSURL::fileURLWithPath("/var/mobile/Media/" + name);
  const auto asset = quaverly::AVURLAsset::URLAssetWithURLOptions(url, nullptr);
  size_t length = 0;
  for (const auto& format : asset->availableMetadataFormats()) {
    for (const auto& item : asset->metadataForFormat(format)) length += lengthOf(item.value(), loads);
  }
  return length;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  const bool loads = std::string_view(arguments[2]) == "load";
  quaverly::Device::current().mounts.mount("/var/mobile/Media", arguments[1],
                                           quaverly::MountTable::Access::readOnly);
  quaverly::bench::passOverFolder(arguments[1],
                                  [&](const std::string& name) { return readSong(name, loads); });
}
