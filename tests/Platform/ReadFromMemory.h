#pragma once

#include <string_view>
#include <vector>

#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::tags {

/// What the tags of a file with these bytes say.
std::vector<TagContents> readFromMemory(std::string_view file);

/// All of it in one line, group by group: "ID3v2{title=T artist=A album=B genre=G track=1 year=2014
/// front=bytes picture4=bytes}".
std::string described(const std::vector<TagContents>& groups);
std::string describedFromMemory(std::string_view file);

}  // namespace quaverly::tags
