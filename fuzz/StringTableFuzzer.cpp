#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Foundation/StringTables/StringTable.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  if (const auto table = quaverly::StringTable::parse(input)) table->find("IMPORT");
  return 0;
}
