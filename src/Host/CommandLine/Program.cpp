#include "Host/CommandLine/Program.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <functional>

#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/CommandLine/ParserWords.h"
#include "Host/Environment/HostWords.h"
#include "Host/Environment/ProcessLimits.h"
#include "Host/Environment/UserFolders.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

using Command = std::function<ExitStatus(Console&)>;

CommonOptions defaultOptions() {
  const auto folders = host::UserFolders::find();
  CommonOptions options;
  options.media = folders.downloads;
  options.library = folders.music;
  options.data = folders.data;
  return options;
}

void addCommonOptions(CLI::App& app, CommonOptions& common) {
  const char* group = "Options of every command";
  app.add_option("--media", common.media, "The folder that songs come from")
      ->type_name("DIR")
      ->capture_default_str()
      ->group(group);
  app.add_option("--library", common.library, "The music folder that songs are filed in")
      ->type_name("DIR")
      ->capture_default_str()
      ->group(group);
  app.add_option("--data", common.data, "Where quaverly keeps its catalogue")
      ->type_name("DIR")
      ->capture_default_str()
      ->group(group);
  app.add_flag("--json", common.json, "Print one JSON object per line and nothing else")->group(group);
  auto* quiet = app.add_flag("--quiet", common.quiet, "Say only what went wrong")->group(group);
  app.add_flag("--verbose", common.verbose, "Say more about what is done")->excludes(quiet)->group(group);
}

void addText(CLI::App& command, const char* name, std::optional<std::string>& text, const char* meaning) {
  command.add_option(name, text, meaning)->type_name("TEXT")->check([](const std::string& value) {
    return NSStringIsUTF8(value) ? std::string() : "is not UTF-8";
  });
}

void addServeOptions(CLI::App& app, ServeOptions& options) {
  app.add_option("--page-port", options.pagePort,
                 "The port of the page; without it 8181, or the next free one")
      ->type_name("N")
      ->check(CLI::Range(1, 65535));
  app.add_flag("!--no-browser", options.opensBrowser, "Open no browser");
}

/// Serving is what the program does when nothing else is named, so its options stand on their own as well.
void addServe(CLI::App& app, const CommonOptions& common, ServeOptions& options, Command& chosen) {
  chosen = [&](Console& console) { return runServe(console, common, options); };
  addServeOptions(app, options);
  auto* command =
      app.add_subcommand("serve", "Show the page in the browser until Ctrl-C; also without a command");
  addServeOptions(*command, options);
  app.callback([&app] {
    const bool isServing = app.get_subcommands().empty() || app.got_subcommand("serve");
    for (const auto* name : {"--page-port", "--no-browser"}) {
      if (!isServing && app.count(name) > 0) throw CLI::ExtrasError({std::string(name)});
    }
  });
}

void addImport(CLI::App& app, const CommonOptions& common, ImportOptions& options, Command& chosen) {
  auto* command = app.add_subcommand("import", "Put audio files into the music library");
  command->add_option("FILE", options.files, "Files whose name ends in mp3, from anywhere")
      ->required()
      ->type_name("");
  addText(*command, "--title", options.title, "Use this title");
  addText(*command, "--artist", options.artist, "Use this artist");
  addText(*command, "--album", options.album, "Use this album");
  addText(*command, "--year", options.year, "Use this year");
  addText(*command, "--track", options.track, "Use this track number");
  command->add_option("--artwork", options.artwork, "Use this JPEG or PNG picture as the cover")
      ->type_name("IMAGE");
  command->add_flag("--dry-run", options.dryRun, "Print what would be done, and do nothing");
  command->callback([&] { chosen = [&](Console& console) { return runImport(console, common, options); }; });
}

void addList(CLI::App& app, const CommonOptions& common, std::string& path, Command& chosen) {
  auto* command = app.add_subcommand("ls", "List a folder as the browser shows it");
  command
      ->add_option("PATH", path, "A device path, or one under the media folder; without it, the media folder")
      ->type_name("");
  command->callback([&] { chosen = [&](Console& console) { return runList(console, common, path); }; });
}

void addInfo(CLI::App& app, const CommonOptions& common, std::string& file, Command& chosen) {
  auto* command = app.add_subcommand("info", "Print what is read from a file's tags");
  command->add_option("FILE", file, "An audio file, from anywhere")->required()->type_name("");
  command->callback([&] { chosen = [&](Console& console) { return runInfo(console, common, file); }; });
}

void addEngines(CLI::App& app, const CommonOptions& common, EnginesOptions& options, Command& chosen) {
  using Action = EnginesOptions::Action;
  auto* command = app.add_subcommand("engines", "List the add-on's engines, or switch one on or off");
  command->fallthrough()->require_subcommand(0, 1);
  command->callback([&] { chosen = [&](Console& console) { return runEngines(console, common, options); }; });
  command->add_subcommand("list", "List them: what happens without a word, too")->fallthrough();
  const auto add = [&](const char* name, const char* meaning, Action action) {
    auto* turning = command->add_subcommand(name, meaning)->fallthrough();
    turning->add_option("NAME", options.name, "An engine's title, or the name of its file")
        ->required()
        ->type_name("");
    turning->callback([&options, action] { options.action = action; });
  };
  add("enable", "Switch an engine on", Action::enable);
  add("disable", "Switch an engine off", Action::disable);
}

void addMail(CLI::App& app, const CommonOptions& common, std::string& output, Command& chosen) {
  auto* command = app.add_subcommand("mail", "Write to support, with what the machine is and has installed");
  command->add_option("--output", output, "Save the mail as a draft instead of sending it")
      ->type_name("FILE.eml");
  command->callback([&] { chosen = [&](Console& console) { return runMail(console, common, output); }; });
}

void addListings(CLI::App& app, const CommonOptions& common, Command& chosen) {
  app.add_subcommand("library", "List the songs filed so far, newest first")->callback([&] {
    chosen = [&](Console& console) { return runLibrary(console, common); };
  });
  app.add_subcommand("downloads", "List what became of each import, newest first")->callback([&] {
    chosen = [&](Console& console) { return runDownloads(console, common); };
  });
}

void describe(CLI::App& app) {
  app.name("quaverly");
  app.set_version_flag("--version", "quaverly " QUAVERLY_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.get_formatter()->column_width(30);
  app.fallthrough();
  app.require_subcommand(0, 1);
  app.footer(
      "Example: quaverly import ~/Downloads/*.mp3\n"
      "Exit status: 0 all done, 1 something failed, 2 wrong usage.");
}

/// Runs what was chosen. What nobody foresaw ends the command with a line, not with a crash.
int run(const Command& command, const CommonOptions& common) {
  Console console(common.form(), common.loudness());
  setLogSink([&console](std::string_view line) { console.detail(line); });
  try {
    return static_cast<int>(command(console));
  } catch (const std::exception& error) {
    console.problem("", std::string("unexpected: ") + error.what());
    return static_cast<int>(ExitStatus::failed);
  }
}

}  // namespace

int runProgram(int argumentCount, char** arguments) {
  host::raiseDescriptorLimit();
  Device::current().systemWords = host::systemWord;
  CommonOptions common = defaultOptions();
  ServeOptions serve;
  ImportOptions import;
  EnginesOptions engines;
  std::string output;
  std::string path;
  std::string file;
  Command chosen;

  CLI::App app("Brings audio files into your music library, with the tags and the cover you want.");
  describe(app);
  addCommonOptions(app, common);
  addServe(app, common, serve, chosen);
  addImport(app, common, import, chosen);
  addList(app, common, path, chosen);
  addInfo(app, common, file, chosen);
  addEngines(app, common, engines, chosen);
  addMail(app, common, output, chosen);
  addListings(app, common, chosen);
  translateParser(app);
  try {
    app.parse(argumentCount, arguments);
  } catch (const CLI::ParseError& error) {
    return static_cast<int>(app.exit(error) == 0 ? ExitStatus::done : ExitStatus::usage);
  }
  for (auto* folder : {&common.media, &common.library, &common.data}) *folder = absolutePath(*folder);
  return run(chosen, common);
}

}  // namespace quaverly::commandline
