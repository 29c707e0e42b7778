#include "ReadFromMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagReading.h"

namespace quaverly::tags {
namespace {

std::string described(const TagContents& contents) {
  constexpr const char* names[] = {"title=", "artist=", "album=", "genre=", "track=", "year="};
  std::string text;
  for (size_t i = 0; i < std::size(names); ++i) {
    const auto& value = contents.*TagContents::texts[i];
    if (value) text.append(text.empty() ? "" : " ").append(names[i]).append(*value);
  }
  for (const auto& picture : contents.pictures) {
    const bool isFront = picture.kind == Picture::frontCover;
    text.append(text.empty() ? "" : " ").append(isFront ? "front" : "picture" + std::to_string(picture.kind));
    text.append("=").append(picture.data.text());
  }
  return contents.format + "{" + text + "}";
}

}  // namespace

std::vector<TagContents> readFromMemory(std::string_view file) {
  const Descriptor memory(memfd_create("song", MFD_CLOEXEC));
  if (write(memory.number(), file.data(), file.size()) != std::ssize(file))
    throw std::runtime_error("no memory");
  return readTags(memory.number());
}

std::string described(const std::vector<TagContents>& groups) {
  std::string text;
  for (const auto& group : groups) text += described(group);
  return text;
}

std::string describedFromMemory(std::string_view file) {
  return described(readFromMemory(file));
}

}  // namespace quaverly::tags
