// cadrova trace: becomes another program, whose lookups libcadrova_trace.so writes down.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "commands/commands.h"
#include "output/console.h"

namespace {

std::string Reason() { return std::generic_category().message(errno); }

// What the loader is told to load first. It takes a blank or a colon for the end of a path.
std::string Preload() {
  const auto command = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  std::string path = (command / CADROVA_TRACE_LIBRARY).lexically_normal();
  const int library = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (library < 0) Fail(path + ": " + Reason() + "; it is installed along with this command");
  if (path.find_first_of(" :") == std::string::npos) return path;
  const int kept = fcntl(library, F_DUPFD, 32);  // where few programs would meet it
  if (kept < 0) Fail(path + ": " + Reason());
  return "/proc/self/fd/" + std::to_string(kept);
}

// Makes FILE empty, and its name one that stays right wherever the program goes. The descriptor
// goes when the program begins; a pipe would end there for its reader, and needs no emptying.
std::string Emptied(const std::string& file) {
  std::error_code unknown;
  if (!std::filesystem::is_fifo(file, unknown) &&
      open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666) < 0) {
    Fail("-o " + file + ": " + Reason());
  }
  return std::filesystem::absolute(file);
}

void Set(const char* variable, const std::string& value) {
  if (value.empty()) {
    unsetenv(variable);
  } else {
    setenv(variable, value.c_str(), 1);
  }
}

[[noreturn]] void Become(std::vector<std::string> words) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  Fail("'" + words[0] + "' can't be run: " + Reason(), errno == ENOENT ? 127 : 126);
}

}  // namespace

void AddTrace(CLI::App& app) {
  CLI::App& trace = *app.add_subcommand("trace", "Run a program and write down its lookups");
  const auto steps = std::make_shared<bool>(false), summary = std::make_shared<bool>(false);
  const auto file = std::make_shared<std::string>();
  trace.add_flag("--steps", *steps, "Write down what each lookup asks, too");
  trace.add_flag("--summary", *summary, "Sum them up when the program ends, instead");
  trace.add_option("-o", *file, "Where to write, instead of to standard error")->type_name("FILE");
  const auto words = std::make_shared<std::vector<std::string>>();
  trace.add_option("PROGRAM", *words, "Behind --: the program and its arguments")
      ->required()
      ->type_name("");
  trace.footer("As: cadrova trace -o lookups.txt -- my_program\n");
  trace.callback([=] {
    if (*steps && *summary) Fail("--steps and --summary exclude each other");
    const char* const others = std::getenv("LD_PRELOAD");
    Set("LD_PRELOAD", Preload() + (others == nullptr ? "" : std::string(":") + others));
    Set("CADROVA_TRACE", file->empty() ? "" : Emptied(*file));
    Set("CADROVA_TRACE_SHOW", *steps ? "steps" : *summary ? "summary" : "");
    Become(*words);
  });
}
