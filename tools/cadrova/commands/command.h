// What each command implements.
#pragma once

#include <memory>
#include <span>

#include "commands/command_line.h"

namespace cadrova::tools {

class Command {
 public:
  virtual ~Command() = default;

  // Declares the options and arguments. The command stores their values.
  virtual void DeclareOptions(Options& options) = 0;

  // Returns the exit status; throws a Failure.
  virtual int Run() = 0;
};

// The exit statuses of all commands except trace. kNegative: the item is missing, no key matches,
// a device changes, or the data has errors.
constexpr int kSuccess = 0, kNegative = 1;

struct CommandInfo {
  const char* name;
  const char* summary;
  const char* example;
  std::unique_ptr<Command> (*make)();
};

// All commands, in the order of the help text.
std::span<const CommandInfo> Commands();
std::vector<std::string> CommandNames();

std::unique_ptr<Command> MakeCheck();
std::unique_ptr<Command> MakeDevice();
std::unique_ptr<Command> MakeDiff();
std::unique_ptr<Command> MakeExplain();
std::unique_ptr<Command> MakeGet();
std::unique_ptr<Command> MakeHelp();
std::unique_ptr<Command> MakeList();
std::unique_ptr<Command> MakeMatrix();
std::unique_ptr<Command> MakeTrace();

}  // namespace cadrova::tools
