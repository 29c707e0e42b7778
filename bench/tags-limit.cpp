// Asks the kernel for the same bytes and does nothing with them: opens each file, reads its first tag into a
// buffer that is there already, then its last bytes. tags-limit FOLDER
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "PassesOverFolder.h"

namespace {

size_t readSong(const std::string& path) {
  static std::vector<unsigned char> buffer(size_t{1} << 21);
  std::array<unsigned char, 10> header{};
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status;
  if (descriptor < 0 || fstat(descriptor, &status) != 0) return 0;
  ssize_t count = pread(descriptor, header.data(), header.size(), 0);
  size_t length = 0;
  for (size_t i = 6; i < 10; ++i) length = length << 7 | header[i];
  count += pread(descriptor, buffer.data(), std::min(length, buffer.size()), 10);
  count += pread(descriptor, buffer.data(), 160, status.st_size - 160);
  close(descriptor);
  return static_cast<size_t>(count);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  const std::string folder = arguments[1];
  quaverly::bench::passOverFolder(folder,
                                  [&](const std::string& name) { return readSong(folder + "/" + name); });
}
