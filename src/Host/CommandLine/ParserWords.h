#pragma once

namespace CLI {
class App;
}

namespace quaverly::commandline {

/// Has the parser say everything in the user's language: its help, and what is wrong with the arguments. Once
/// it knows all its options and commands.
void translateParser(CLI::App& app);

}  // namespace quaverly::commandline
