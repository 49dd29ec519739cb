#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "cadrova/cadrova.h"
#include "commands/command.h"
#include "commands/shared_options.h"
#include "failure.h"
#include "output/output_file.h"

namespace cadrova::tools {
namespace {

std::string ErrorText() { return std::generic_category().message(errno); }

// A copy of `descriptor` that the program inherits.
std::string Inherited(int descriptor) {
  const int inherited = fcntl(descriptor, F_DUPFD, 32);  // 32: few programs use this number
  if (inherited < 0) throw Failure("can't copy a file descriptor: " + ErrorText());
  return std::to_string(inherited);
}

// The path for LD_PRELOAD: the trace library is installed beside the library. For the loader, a
// blank or a colon ends a path; a path that contains one is replaced with that of an open file.
std::string TraceLibraryPath() {
  Dl_info library_info = {};
  dladdr(reinterpret_cast<const void*>(android::getIntFromRust), &library_info);
  std::error_code error;
  const auto library_path = std::filesystem::canonical(library_info.dli_fname, error);
  std::string path = library_path.parent_path() / "libcadrova_trace.so";
  const int library = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (library < 0) {
    throw Failure(path + ": " + ErrorText() + "; install it beside libcadrova_cpp.so");
  }
  if (path.find_first_of(" :") == std::string::npos) return path;
  return "/proc/self/fd/" + Inherited(library);
}

// The file of the trace, for the environment of the program.
struct TraceFile {
  std::string path;   // absolute, because the program may change its folder
  std::string given;  // a pipe that the program inherits: its descriptor, device and inode
};

// Empties the file. Of a FIFO, waits for the reader. Names such as /dev/stdout mean other files in
// other processes, so the file that is open has another name, or is inherited.
TraceFile OpenTraceFile(const std::string& file) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  struct stat status;
  if (descriptor < 0 || fstat(descriptor, &status) != 0) {
    throw Failure("-o " + file + ": " + ErrorText());
  }
  if (S_ISFIFO(status.st_mode)) {
    return {std::filesystem::absolute(file), Inherited(descriptor) + ':' +
                                                 std::to_string(status.st_dev) + ':' +
                                                 std::to_string(status.st_ino)};
  }
  return {std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)), ""};
}

// Refuses to empty a file that the program may read: its data, its standard input, or one that an
// argument names, perhaps as the value of an option.
void RefuseInputsOfProgram(const std::string& file, const std::vector<std::string>& arguments) {
  std::vector<std::string> inputs = {"/dev/stdin"};
  for (const std::string& argument : arguments) {
    inputs.push_back(argument);
    inputs.push_back(argument.substr(argument.find('=') + 1));
  }
  for (const char* const name : {"CADROVA_HOST_DATA", "CADROVA_HOST_PROPS"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr) inputs.emplace_back(value);
  }
  RefuseInputs("-o", file, inputs);
}

void SetVariable(const char* name, const std::string& value) {
  if (value.empty()) {
    unsetenv(name);
  } else {
    setenv(name, value.c_str(), 1);
  }
}

class Trace : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddFlag("--steps", steps_, "Also log the calls of each lookup");
    options.AddFlag("--summary", summary_, "Write a table at exit instead");
    options.Add("-o", file_, "FILE", "Write to FILE (default: standard error)", ValueType::kFile);
    options.AddRemaining("PROGRAM", program_, "Program and its arguments, after \"--\"",
                         Options::Need::kAtLeastOne, ValueType::kProgram);
  }

  // This process becomes the program.
  int Run() override {
    RefuseCombination({{"--steps", steps_}, {"--summary", summary_}});
    if (file_) RefuseInputsOfProgram(*file_, program_);
    const char* const preloaded = std::getenv("LD_PRELOAD");
    SetVariable("LD_PRELOAD",
                TraceLibraryPath() + (preloaded == nullptr ? "" : std::string(":") + preloaded));
    const TraceFile file = file_ ? OpenTraceFile(*file_) : TraceFile();
    SetVariable("CADROVA_TRACE", file.path);
    SetVariable("CADROVA_TRACE_DESCRIPTOR", file.given);
    SetVariable("CADROVA_TRACE_SHOW", steps_ ? "steps" : summary_ ? "summary" : "");
    std::vector<char*> arguments;
    arguments.reserve(program_.size() + 1);
    for (std::string& argument : program_) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    throw Failure("can't run '" + program_[0] + "': " + ErrorText(), errno == ENOENT ? 127 : 126);
  }

 private:
  bool steps_ = false, summary_ = false;
  std::optional<std::string> file_;
  std::vector<std::string> program_;
};

}  // namespace

std::unique_ptr<Command> MakeTrace() { return std::make_unique<Trace>(); }

}  // namespace cadrova::tools
