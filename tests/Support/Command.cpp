#include "Support/Command.h"

#include <array>
#include <cstdio>
#include <stdexcept>

#include "Support/TemporaryFolder.h"

namespace quaverly::test {

std::string run(const std::string& command) {
  const TemporaryFolder folder;
  const auto errors = folder / "errors";
  FILE* pipe = popen(("{ " + command + "\n} 2>" + quoted(errors)).c_str(), "re");
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string output;
  std::array<char, 4096> piece;
  for (size_t count; (count = fread(piece.data(), 1, piece.size(), pipe)) > 0;)
    output.append(piece.data(), count);
  const int status = pclose(pipe);
  if (status != 0) throw std::runtime_error(command + " failed: " + contentsOf(errors));
  return output;
}

std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string python(const std::string& program, std::initializer_list<std::string> arguments) {
  std::string command = "/usr/bin/python3 -c " + quoted(program);
  for (const auto& argument : arguments) command += " " + quoted(argument);
  return run(command);
}

}  // namespace quaverly::test
