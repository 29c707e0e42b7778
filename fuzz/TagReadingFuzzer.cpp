#include "MemoryFile.h"
#include "Platform/AVFoundation/TagReading.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static quaverly::fuzz::MemoryFile file;
  file.setContents({reinterpret_cast<const char*>(bytes), size});
  quaverly::tags::readTags(file.descriptor());
  return 0;
}
