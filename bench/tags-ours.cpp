// Reads the metadata of every file of a folder as the bundle does, covers included. tags-ours FOLDER
#include "PassesOverFolder.h"
#include "Platform/AVFoundation/AVURLAsset.h"
#include "Platform/Device/Device.h"

namespace {

size_t lengthOf(const quaverly::AVMetadataItem::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return text->size();
  if (const auto* data = std::get_if<quaverly::NSData>(&value)) return data->length();
  return std::get<quaverly::AVMetadataItem::Dictionary>(value).at("data").length();
}

size_t readSong(const std::string& name) {
  const auto url = quaverly::NSURL::fileURLWithPath("/var/mobile/Media/" + name);
  const auto asset = quaverly::AVURLAsset::URLAssetWithURLOptions(url, nullptr);
  size_t length = 0;
  for (const auto& format : asset->availableMetadataFormats()) {
    for (const auto& item : asset->metadataForFormat(format)) length += lengthOf(item.value());
  }
  return length;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  quaverly::Device::current().mounts.mount("/var/mobile/Media", arguments[1],
                                           quaverly::MountTable::Access::readOnly);
  quaverly::bench::passOverFolder(arguments[1], readSong);
}
