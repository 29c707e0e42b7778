#include "Support/Mutations.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace quaverly::test {

Mutations::Mutations(std::vector<std::string> originals) : _originals(std::move(originals)) {
  const char* given = std::getenv("QUAVERLY_TEST_SEED");
  const uint64_t seed = given ? std::strtoull(given, nullptr, 10) : std::random_device()();
  std::cout << "QUAVERLY_TEST_SEED=" << seed << std::endl;
  _random.seed(seed);
}

std::string Mutations::next() {
  std::string file = _originals[below(_originals.size())];
  for (size_t count = 1 + below(8); count > 0 && !file.empty(); --count) damage(file);
  return file;
}

size_t Mutations::below(size_t limit) {
  return std::uniform_int_distribution<size_t>(0, limit - 1)(_random);
}

void Mutations::damage(std::string& file) {
  // Most of the structure lies in the first bytes.
  const size_t at = below(below(2) == 0 ? file.size() : std::min<size_t>(file.size(), 400));
  const size_t length = std::min(file.size() - at, 1 + below(16));
  switch (below(7)) {
    case 0:
      file[at] = static_cast<char>(below(256));
      break;
    case 1:
      file[at] = static_cast<char>(file[at] ^ (1 << below(8)));
      break;
    case 2:
      file.replace(at, length, length, below(2) == 0 ? '\xff' : '\0');
      break;
    case 3:
      file.replace(at, length, length, '\x7f');
      break;
    case 4:
      file.erase(at, length);
      break;
    case 5:
      file.insert(at, file, below(file.size()), 1 + below(500));
      break;
    case 6:
      file.resize(below(4) == 0 ? at : file.size());
      break;
  }
}

MemoryFile::MemoryFile() : _descriptor(memfd_create("file", MFD_CLOEXEC)) {}

MemoryFile::~MemoryFile() {
  close(_descriptor);
}

void MemoryFile::setContents(const std::string& bytes) {
  const auto length = static_cast<off_t>(bytes.size());
  if (ftruncate(_descriptor, length) != 0 || pwrite(_descriptor, bytes.data(), bytes.size(), 0) != length)
    throw std::runtime_error("no memory file");
}

}  // namespace quaverly::test
