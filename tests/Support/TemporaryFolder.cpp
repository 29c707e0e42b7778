#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace quaverly::test {

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quaverly-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
  _path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(_path, ignored);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view contents) const {
  const auto path = _path / name;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(contents.data(), std::ssize(contents));
  return path.string();
}

std::string TemporaryFolder::makeFolder(std::string_view name) const {
  std::filesystem::create_directories(_path / name);
  return (_path / name).string();
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace quaverly::test
