#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Foundation/NSPropertyListSerialization.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  const auto list = quaverly::NSPropertyListSerialization::propertyListWithData(input);
  if (list && list->dictionary()) list->dictionary()->objectForKey("items");
  return 0;
}
