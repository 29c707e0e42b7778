// What is written of a text must read as the same again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Foundation/NSJSONSerialization.h"

using quaverly::NSJSONSerialization;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  const auto value = NSJSONSerialization::JSONObjectWithText(input);
  if (!value) return 0;
  const auto text = NSJSONSerialization::prettyPrintedTextWithJSONObject(*value);
  // The indentation of a text that is nested deeply can make it too long to be read again.
  if (text.size() <= NSJSONSerialization::largestText &&
      NSJSONSerialization::JSONObjectWithText(text) != *value)
    std::abort();
  return 0;
}
