// cadrova: how this device unit is customized, and why.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string>

#include "commands/commands.h"
#include "output/console.h"

namespace {

CLI::App& Command(CLI::App& app, const std::string& name) {
  std::string names;
  for (CLI::App* command : app.get_subcommands({})) {
    if (command->get_name() == name) return *command;
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  Fail("'" + name + "' is no command; use one of: " + names);
}

void AddHelp(CLI::App& app) {
  CLI::App& help = *app.add_subcommand("help", "Say how cadrova, or one command, is used");
  const auto name = std::make_shared<std::string>();
  help.add_option("COMMAND", *name, "explain, get, list, matrix, diff, check, trace or help")
      ->type_name("");
  help.callback([=, &app] {
    const CLI::App& command = name->empty() ? app : Command(app, *name);
    Print(app.get_formatter()->make_help(
        &command, name->empty() ? app.get_name() : app.get_name() + ' ' + *name,
        CLI::AppFormatMode::Normal));
  });
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardStreams();
  CLI::App app("How is this device unit customized, and why?", "cadrova");
  app.get_formatter()->column_width(20);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("REQUIRED", "");
  app.set_version_flag("--version", CADROVA_VERSION);
  AddExplain(app);
  AddGet(app);
  AddList(app);
  AddMatrix(app);
  AddDiff(app);
  AddCheck(app);
  AddTrace(app);
  AddHelp(app);
  app.require_subcommand(0, 1);
  for (CLI::App* command : app.get_subcommands({})) command->group("Commands");
  if (argc > 1 && argv[1][0] != '-') Command(app, argv[1]);
  std::string used = "cadrova";
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    for (const CLI::App* command : app.get_subcommands()) used += ' ' + command->get_name();
    std::string what = error.what();
    const bool is_surplus = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
    if (is_surplus && what.find(": -") != std::string::npos)
      what += "; what is no option stands behind --";
    if (error.get_exit_code() != 0) Fail(what + "; see " + used + " --help");
    std::ostringstream text;
    app.exit(error, text);
    Print(text.str());
    return 0;
  }
  if (app.get_subcommands().empty()) Fail("a command is required; see cadrova --help");
}
