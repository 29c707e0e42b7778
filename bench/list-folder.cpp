// The browser's listing of a folder, a line per entry: name, directory or not, audio file or not, size, date.
// list-folder FOLDER ZONE also says on standard error how many milliseconds the listing itself took.
#include <chrono>
#include <cstdio>

#include "Controllers/ImportAudioController.h"
#include "Platform/Device/Device.h"

namespace {

void print(const quaverly::FileItem& item) {
  std::string line = item.path().value_or("");
  line.append(item.isDirectory() ? "\td" : "\t-").append(item.isAudioFile() ? "\ta\t" : "\t-\t");
  line.append(item.size().value_or("")).append("\t").append(item.date().value_or("")).append("\n");
  std::fwrite(line.data(), 1, line.size(), stdout);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  auto& device = quaverly::Device::current();
  device.mounts.mount("/var/mobile/Media", arguments[1], quaverly::MountTable::Access::readOnly);
  device.timeZoneName = arguments[2];
  const auto controller = quaverly::make<quaverly::ImportAudioController>();
  controller->init();
  const auto start = std::chrono::steady_clock::now();
  const auto items = controller->ItemsInFolder("/var/mobile/Media");
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  for (const auto& item : items) print(item);
  std::fprintf(stderr, "%.3f\n", taken.count());
}
