#include "Platform/Foundation/NSPropertyListSerialization.h"

#include <string>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/PropertyLists/PropertyLists.h"

namespace quaverly {
namespace {

std::nullopt_t nothing(std::string_view path, const char* why) {
  NSLog("The property list \"" + std::string(path) + "\" " + why);
  return std::nullopt;
}

}  // namespace

std::optional<NSPlainValue> NSPropertyListSerialization::propertyListWithData(std::string_view bytes) {
  if (bytes.size() > largestFile) return std::nullopt;
  return bytes.starts_with("bplist") ? valueInBinaryPropertyList(bytes) : valueInXMLPropertyList(bytes);
}

std::optional<NSPlainValue> NSPropertyListSerialization::propertyListWithContentsOfFile(
    std::string_view path) {
  const auto data = NSData::dataWithContentsOfFile(path);
  if (!data) return nothing(path, "cannot be read.");
  if (data->length() > largestFile) return nothing(path, "is too large.");
  auto list = propertyListWithData(data->text());
  if (!list) return nothing(path, "is damaged.");
  return list;
}

}  // namespace quaverly
