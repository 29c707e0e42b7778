#include "Host/CommandLine/ParserWords.h"

#include <CLI/CLI.hpp>

#include "Host/CommandLine/Console.h"
#include "Host/Environment/HostWords.h"

namespace quaverly::commandline {
namespace {

using host::inUsersLanguage;

void translateHelp(CLI::App& app) {
  app.description(inUsersLanguage(app.get_description()));
  app.footer(inUsersLanguage(app.get_footer()));
  for (const char* label : {"Usage", "OPTIONS", "SUBCOMMAND", "REQUIRED", "Subcommands", "Positionals"})
    app.get_formatter()->label(label, inUsersLanguage(label));
  for (auto* option : app.get_options()) {
    option->description(inUsersLanguage(option->get_description()));
    option->group(inUsersLanguage(option->get_group()));
  }
  app.group(inUsersLanguage(app.get_group()));
  for (auto* command : app.get_subcommands({})) translateHelp(*command);
}

/// The parser's sentences are little more than names and values, so that the tables know them with the
/// program's name: nothing else that is said looks like one of them.
std::string usageProblem(const CLI::App*, const CLI::Error& error) {
  return printable(inUsersLanguage(std::string("quaverly: ") + error.what())) + "\n" +
         inUsersLanguage("Run with --help for more information.") + "\n";
}

}  // namespace

void translateParser(CLI::App& app) {
  translateHelp(app);
  app.failure_message(usageProblem);
}

}  // namespace quaverly::commandline
