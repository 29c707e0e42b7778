#pragma once

#include <initializer_list>
#include <string>

namespace quaverly::test {

/// Runs a shell command and returns what it printed on standard output. Throws when it fails, with what it
/// printed on standard error.
std::string run(const std::string& command);

/// `text` as one word of a shell command.
std::string quoted(const std::string& text);

/// Runs a Python program with the system's interpreter, which has the system's packages, and returns what it
/// printed. Arguments come as sys.argv[1] and so on.
std::string python(const std::string& program, std::initializer_list<std::string> arguments);

}  // namespace quaverly::test
