#include "output/capture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "failure.h"

namespace cadrova::tools {
namespace {

void Require(bool succeeded) {
  if (succeeded) return;
  throw Failure("can't capture what the library prints: " + std::generic_category().message(errno));
}

void RedirectStdout(int file, const std::function<void()>& action) {
  std::fflush(stdout);  // What the core has printed before.
  const int standard_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  Require(file >= 0 && standard_output >= 0 && dup2(file, STDOUT_FILENO) >= 0);
  action();
  Require(std::fflush(stdout) == 0 && dup2(standard_output, STDOUT_FILENO) >= 0);
  close(standard_output);
}

}  // namespace

std::string CaptureStdout(const std::function<void()>& action) {
  const int file = memfd_create("stdout", MFD_CLOEXEC);
  RedirectStdout(file, action);
  std::string printed(static_cast<std::size_t>(lseek(file, 0, SEEK_CUR)), '\0');
  Require(pread(file, printed.data(), printed.size(), 0) == std::ssize(printed));
  close(file);
  return printed;
}

void DiscardStdout(const std::function<void()>& action) {
  static bool is_discarded = false;
  if (is_discarded) return action();
  is_discarded = true;
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  RedirectStdout(nowhere, action);
  close(nowhere);
  is_discarded = false;
}

}  // namespace cadrova::tools
