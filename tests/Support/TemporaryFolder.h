#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quaverly::test {

/// A folder of a test's own, removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return _path; }
  std::string operator/(std::string_view name) const { return (_path / name).string(); }

  /// Writes a file below the folder, with the folders on the way, and returns its path.
  std::string write(std::string_view name, std::string_view contents) const;
  std::string makeFolder(std::string_view name) const;

 private:
  std::filesystem::path _path;
};

std::string contentsOf(const std::string& path);

}  // namespace quaverly::test
