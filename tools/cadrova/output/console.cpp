#include "output/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "failure.h"
#include "file.h"

namespace cadrova::tools {

void OpenStandardStreams() {
  // `open` returns the lowest free number, which is that of the closed stream. With these modes,
  // reading from standard input and writing to the other streams fails, as if they were closed.
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) open("/dev/null", kModes[stream] | O_CLOEXEC);
  }
}

void PrintError(const std::string& line) {
  std::fprintf(stderr, "%s\n", host::Printable(line).c_str());
}

void Print(const std::string& text) {
  const bool is_written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (is_written && std::fflush(stdout) == 0) return;
  throw Failure("can't write to standard output: " + std::generic_category().message(errno));
}

std::string Colored(const std::string& text, const char* color) {
  static const char* const no_color = std::getenv("NO_COLOR");
  static const bool is_wanted =
      isatty(STDOUT_FILENO) != 0 && (no_color == nullptr || *no_color == '\0');
  return is_wanted ? std::string("\x1B[") + color + 'm' + text + "\x1B[0m" : text;
}

}  // namespace cadrova::tools
