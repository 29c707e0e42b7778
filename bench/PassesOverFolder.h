#pragma once

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace quaverly::bench {

/// Calls `read` with the name of each file of a folder, over and over, and prints the microseconds that a
/// file took in the median pass, and a sum of what was read, so that nothing is left out. `read` returns a
/// size.
template <class Read>
void passOverFolder(const std::string& folder, const Read& read) {
  constexpr int passes = 5;
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::vector<double> times;
  size_t sum = 0;
  for (int pass = 0; pass < passes; ++pass) {
    const std::clock_t start = std::clock();
    for (const auto& name : names) sum += read(name);
    const double microseconds = static_cast<double>(std::clock() - start) * (1e6 / CLOCKS_PER_SEC);
    times.push_back(microseconds / static_cast<double>(names.size()));
  }
  std::ranges::sort(times);
  std::printf("%.3f %zu\n", times[passes / 2], sum / passes);
}

}  // namespace quaverly::bench
