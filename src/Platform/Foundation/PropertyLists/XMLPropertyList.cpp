#include <plist/plist.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

#include "Platform/Foundation/PropertyLists/PropertyLists.h"

namespace quaverly {
namespace {

struct FreePlist {
  void operator()(void* node) const { plist_free(node); }
};
using Plist = std::unique_ptr<std::remove_pointer_t<plist_t>, FreePlist>;

struct FreeMemory {
  void operator()(char* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<char, FreeMemory>;

// The library frees containers within containers by recursion, and so do we.
constexpr size_t mostContainers = 1000;

bool hasFewContainers(std::string_view xml) {
  size_t count = 0;
  for (const std::string_view tag : {"<dict", "<array"})
    for (size_t at = xml.find(tag); at != std::string_view::npos; at = xml.find(tag, at + 1)) ++count;
  return count <= mostContainers;
}

NSPlainValue valueOf(plist_t node);

NSDictionary dictionaryOf(plist_t node) {
  plist_dict_iter made = nullptr;
  plist_dict_new_iter(node, &made);
  const Memory iterator(static_cast<char*>(made));
  NSDictionary dictionary;
  while (true) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, iterator.get(), &key, &value);
    const Memory keptKey(key);
    if (!key || !value) return dictionary;
    dictionary.append(key, valueOf(value));
  }
}

NSArray arrayOf(plist_t node) {
  plist_array_iter made = nullptr;
  plist_array_new_iter(node, &made);
  const Memory iterator(static_cast<char*>(made));
  NSArray array;
  while (true) {
    plist_t value = nullptr;
    plist_array_next_item(node, iterator.get(), &value);
    if (!value) return array;
    array.push_back(valueOf(value));
  }
}

std::string textOf(plist_t node) {
  uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  return text ? std::string(text, length) : std::string();
}

bool flagOf(plist_t node) {
  uint8_t value = 0;
  plist_get_bool_val(node, &value);
  return value != 0;
}

/// Negative ones come in two's complement.
NSNumber integerOf(plist_t node) {
  uint64_t value = 0;
  plist_get_uint_val(node, &value);
  return NSNumber(std::to_string(static_cast<int64_t>(value)));
}

NSPlainValue realOf(plist_t node) {
  double value = 0;
  plist_get_real_val(node, &value);
  return std::isfinite(value) ? NSPlainValue(NSNumber(value)) : NSPlainValue();
}

NSPlainValue valueOf(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_DICT:
      return dictionaryOf(node);
    case PLIST_ARRAY:
      return arrayOf(node);
    case PLIST_STRING:
      return textOf(node);
    case PLIST_BOOLEAN:
      return flagOf(node);
    case PLIST_UINT:
      return integerOf(node);
    case PLIST_REAL:
      return realOf(node);
    default:
      return {};
  }
}

}  // namespace

std::optional<NSPlainValue> valueInXMLPropertyList(std::string_view xml) {
  if (!hasFewContainers(xml)) return std::nullopt;
  plist_t made = nullptr;
  plist_from_xml(xml.data(), static_cast<uint32_t>(xml.size()), &made);
  const Plist list(made);
  if (!list) return std::nullopt;
  return valueOf(list.get());
}

}  // namespace quaverly
