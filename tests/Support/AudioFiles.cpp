#include "Support/AudioFiles.h"

#include <filesystem>

#include "Support/Command.h"

namespace quaverly::test {
namespace {

const std::string ffmpeg = "ffmpeg -nostdin -v error -y ";

}  // namespace

std::string makeWave(const TemporaryFolder& folder) {
  const auto path = folder / "tone.wav";
  if (!std::filesystem::exists(path))
    run(ffmpeg + "-f lavfi -i sine=frequency=440:duration=1 -ac 2 " + quoted(path));
  return path;
}

std::string encode(const TemporaryFolder& folder, const std::string& name,
                   const std::vector<std::string>& tags) {
  std::string command = ffmpeg + "-i " + quoted(makeWave(folder));
  for (const auto& tag : tags) command += " -metadata " + quoted(tag);
  const auto path = folder / name;
  if (path.ends_with(".opus")) command += " -c:a libopus";
  if (path.ends_with(".ogg")) command += " -c:a libvorbis";
  run(command + " " + quoted(path));
  return path;
}

std::string encodeWithLame(const TemporaryFolder& folder, const std::string& name,
                           const std::string& options) {
  const auto path = folder / name;
  run("lame --quiet " + options + " " + quoted(makeWave(folder)) + " " + quoted(path));
  return path;
}

std::string makePicture(const TemporaryFolder& folder, const std::string& name, const std::string& size,
                        const std::string& options) {
  const auto path = folder / name;
  run(ffmpeg + "-f lavfi -i testsrc=size=" + size + " -frames:v 1 " + options + " " + quoted(path));
  return path;
}

}  // namespace quaverly::test
