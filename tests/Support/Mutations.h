#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace quaverly::test {

/// Damages files at random, but the same way for the same seed. The seed is printed, and can be given again
/// in the environment as QUAVERLY_TEST_SEED.
class Mutations {
 public:
  explicit Mutations(std::vector<std::string> originals);

  /// One of the originals, with one to eight pieces of damage.
  std::string next();

 private:
  size_t below(size_t limit);
  void damage(std::string& file);

  std::vector<std::string> _originals;
  std::mt19937_64 _random;
};

/// A file in memory, whose contents can be exchanged.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const { return _descriptor; }
  void setContents(const std::string& bytes);

 private:
  int _descriptor;
};

}  // namespace quaverly::test
