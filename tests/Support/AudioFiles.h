#pragma once

#include <string>
#include <vector>

#include "Support/TemporaryFolder.h"

namespace quaverly::test {

/// Files made by other people's encoders and taggers, in a folder that the caller keeps. Each function
/// returns the path.

/// A second of a tone.
std::string makeWave(const TemporaryFolder& folder);

/// Encoded by ffmpeg, in the format that the ending tells, with tags given as "key=value".
std::string encode(const TemporaryFolder& folder, const std::string& name,
                   const std::vector<std::string>& tags = {});

/// Encoded by lame, with its own options for tags.
std::string encodeWithLame(const TemporaryFolder& folder, const std::string& name,
                           const std::string& options = "");

/// A picture made by ffmpeg: `size` as "64x48", in the format that the ending tells.
std::string makePicture(const TemporaryFolder& folder, const std::string& name,
                        const std::string& size = "64x48", const std::string& options = "");

}  // namespace quaverly::test
