#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Host/Library/SongTags.h"
#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::library {

using Field = tags::TagContents::Field;

/// The fields that an import decides; the genre is not one of them.
inline constexpr Field decidedFields[] = {&tags::TagContents::title, &tags::TagContents::artist,
                                          &tags::TagContents::album, &tags::TagContents::track,
                                          &tags::TagContents::year};

/// The tags as a file can hold them: empty texts and numbers below 1 are none; texts are UTF-8 and end at a
/// zero.
SongTags writable(const SongTags& tags);

/// A field as text; empty when there is none.
std::string valueOf(const SongTags& tags, Field field);

/// Whether what a tag has for a field reads to the value that is wanted ("" for none), so that it can stay as
/// written: "3/12" for "3", "2014-05-01" for "2014".
bool readsTo(std::string_view wanted, Field field, std::string_view written);

/// What the groups of a file say together, a later one over an earlier one.
SongTags songTagsOf(const std::vector<tags::TagContents>& groups);

}  // namespace quaverly::library
