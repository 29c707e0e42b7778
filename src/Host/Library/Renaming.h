#pragma once

#include <string>

namespace quaverly::library {

/// Renames a file within a file system, never in place of another: then, and for all other obstacles, it
/// returns an `errno` value (EEXIST), otherwise 0. Where the file system has no such operation, programs of
/// ours take turns over a lock file in `turnsFolder`, and only a name that is free is used.
int renameWithoutReplacing(const std::string& from, const std::string& to, const std::string& turnsFolder);

}  // namespace quaverly::library
