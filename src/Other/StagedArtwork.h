#pragma once

#include <string>

namespace quaverly {

/// The folder for staged artwork; made when it is not there, which is logged when it fails. With its slash.
std::string temporaryArtworkDirectory();

/// How a song's record names a staged file: as a file URL, by the path behind the device's link to it.
std::string stagedArtworkURL(const std::string& path);

}  // namespace quaverly
