#include "output/console.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "file.h"

namespace {

void Require(bool succeeded, const std::string& what) {
  if (!succeeded) Fail("can't " + what + ": " + std::generic_category().message(errno));
}

constexpr char kAside[] = "keep aside what the library prints";

// Whatever `act` prints to standard output goes to the file.
void PrintTo(int file, const std::function<void()>& act) {
  const int standard_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  Require(file >= 0 && standard_output >= 0 && dup2(file, STDOUT_FILENO) >= 0, kAside);
  act();
  Require(std::fflush(stdout) == 0 && dup2(standard_output, STDOUT_FILENO) >= 0, kAside);
  close(standard_output);
}

}  // namespace

void OpenStandardStreams() {
  // The lowest descriptor that is free is the one that is missing. /dev/null is opened so that
  // reading from the one and writing to the other fails as they would.
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) open("/dev/null", kModes[stream] | O_CLOEXEC);
  }
}

void Say(const std::string& message) {
  std::fprintf(stderr, "cadrova: %s\n", cadrova::host::Printable(message).c_str());
}

void Fail(const std::string& message, int status) {
  Say(message);
  std::exit(status);
}

void Print(const std::string& text) {
  const bool is_written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  Require(is_written && std::fflush(stdout) == 0, "write to standard output");
}

std::string PrintedBy(const std::function<void()>& act) {
  const int aside = memfd_create("printed", MFD_CLOEXEC);
  PrintTo(aside, act);
  std::string printed(static_cast<std::size_t>(lseek(aside, 0, SEEK_CUR)), '\0');
  Require(pread(aside, printed.data(), printed.size(), 0) == std::ssize(printed), kAside);
  close(aside);
  return printed;
}

void Silently(const std::function<void()>& act) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  PrintTo(nowhere, act);
  close(nowhere);
}

std::string Coloured(const std::string& text, const char* colour) {
  static const char* const unwanted = std::getenv("NO_COLOR");
  static const bool is_wanted =
      isatty(STDOUT_FILENO) != 0 && (unwanted == nullptr || *unwanted == '\0');
  return is_wanted ? std::string("\x1B[") + colour + 'm' + text + "\x1B[0m" : text;
}

void Progress::Show(std::size_t done, std::size_t all) {
  static const bool is_wanted = isatty(STDERR_FILENO) != 0;
  if (!is_wanted || Clock::now() < next_) return;
  next_ = Clock::now() + std::chrono::milliseconds(100);
  is_shown_ = true;
  std::fprintf(stderr, "\rcadrova: %s: %zu %%\x1B[K", work_.c_str(), 100 * done / all);
}

Progress::~Progress() {
  if (is_shown_) std::fputs("\r\x1B[K", stderr);
}
