// The table of commands.

#include "commands/command.h"

namespace cadrova::tools {
namespace {

constexpr CommandInfo kCommands[] = {
    {"explain", "Show which map a value comes from",
     "cadrova explain calling.ring_seconds --region EU --carrier X1", MakeExplain},
    {"device", "Show what a device gets, or how two differ", "cadrova device EU/X1 JP/N7",
     MakeDevice},
    {"get", "Print the value of one feature",
     "cadrova get carrier int calling.ring_seconds --carrier X1", MakeGet},
    {"list", "List features and the maps that contain them", "cadrova list ring", MakeList},
    {"matrix", "Show the value of a feature on every device",
     "cadrova matrix carrier-region int calling.ring_seconds\n"
     "         cadrova matrix --html devices.html",
     MakeMatrix},
    {"diff", "Show which devices another file changes, and how", "cadrova diff old.toml new.toml",
     MakeDiff},
    {"check", "Report errors and redundant values in a file",
     "cadrova check data.toml --regions ,EU,JP --carriers ,X1,N7", MakeCheck},
    {"trace", "Run a program and log its lookups", "cadrova trace -o lookups.txt -- my_program",
     MakeTrace},
    {"help", "Show help for cadrova or one command", "cadrova help explain", MakeHelp},
};

}  // namespace

std::span<const CommandInfo> Commands() { return kCommands; }

std::vector<std::string> CommandNames() {
  std::vector<std::string> names;
  for (const CommandInfo& command : kCommands) names.emplace_back(command.name);
  return names;
}

}  // namespace cadrova::tools
