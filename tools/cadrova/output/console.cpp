#include "output/console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "failure.h"
#include "file.h"
#include "utf8.h"

namespace cadrova::tools {
namespace {

std::string color_choice = "auto";

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

void ChooseColor(const std::string& when) {
  if (when != "auto" && when != "always" && when != "never") {
    throw Failure("--color: unknown word '" + when + "'; use one of: auto, always, never");
  }
  color_choice = when;
}

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

std::string DataFor(int stream, const std::string& data) {
  if (isatty(stream) == 0) return data;
  std::string safe;
  host::AppendSafe(safe, data, "\n\t");
  return safe;
}

bool HasColor() {
  if (color_choice != "auto") return color_choice == "always";
  return isatty(STDOUT_FILENO) != 0 && Variable("NO_COLOR").empty() && Variable("TERM") != "dumb";
}

std::string Colored(const std::string& text, const std::string& color) {
  return !color.empty() && HasColor() ? "\x1B[" + color + 'm' + text + "\x1B[0m" : text;
}

std::size_t TerminalWidth() {
  if (isatty(STDOUT_FILENO) == 0) return std::string::npos;
  const std::string columns = Variable("COLUMNS");
  std::size_t width = 0;
  const char* const end = columns.data() + columns.size();
  const auto [rest, error] = std::from_chars(columns.data(), end, width);
  if (error == std::errc() && rest == end && width > 0) return width;
  winsize size = {};
  const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return is_known ? size.ws_col : std::string::npos;
}

}  // namespace cadrova::tools
