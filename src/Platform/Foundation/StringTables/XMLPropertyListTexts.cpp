#include "Platform/Foundation/StringTables/PropertyListTexts.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

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

// The library frees containers within containers by recursion. A string table needs one.
constexpr size_t mostContainers = 64;

bool hasFewContainers(std::string_view xml) {
  size_t count = 0;
  for (const std::string_view tag : {"<dict", "<array"})
    for (size_t at = xml.find(tag); at != std::string_view::npos; at = xml.find(tag, at + 1)) ++count;
  return count <= mostContainers;
}

std::optional<Texts> textsIn(const Plist& list) {
  if (!list || plist_get_node_type(list.get()) != PLIST_DICT) return std::nullopt;
  plist_dict_iter made = nullptr;
  plist_dict_new_iter(list.get(), &made);
  const Memory iterator(static_cast<char*>(made));
  Texts texts;
  while (true) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(list.get(), iterator.get(), &key, &value);
    const Memory keptKey(key);
    if (!value) return texts;
    uint64_t length = 0;
    const char* text = plist_get_string_ptr(value, &length);
    if (key && text) texts.insert_or_assign(key, std::string(text, length));
  }
}

}  // namespace

std::optional<Texts> textsInXMLPropertyList(std::string_view xml) {
  if (!hasFewContainers(xml)) return std::nullopt;
  plist_t list = nullptr;
  plist_from_xml(xml.data(), static_cast<uint32_t>(xml.size()), &list);
  return textsIn(Plist(list));
}

}  // namespace quaverly
