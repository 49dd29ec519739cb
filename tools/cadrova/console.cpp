#include "console.h"

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
  const std::string what = "keep aside what the library prints";
  const int aside = memfd_create("printed", MFD_CLOEXEC);
  const int standard_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  Require(aside >= 0 && standard_output >= 0 && dup2(aside, STDOUT_FILENO) >= 0, what);
  act();
  Require(std::fflush(stdout) == 0 && dup2(standard_output, STDOUT_FILENO) >= 0, what);
  close(standard_output);
  std::string printed(static_cast<std::size_t>(lseek(aside, 0, SEEK_CUR)), '\0');
  Require(pread(aside, printed.data(), printed.size(), 0) == std::ssize(printed), what);
  close(aside);
  return printed;
}
