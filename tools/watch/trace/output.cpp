#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "json.h"

namespace cadrova::watch {
namespace {

// A descriptor that the program neither meets nor hands on, whatever it does with the first ones.
int Aside(int descriptor) {
  const int far = fcntl(descriptor, F_DUPFD_CLOEXEC, 900);
  return far >= 0 ? far : fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
}

int Open() {
  const char* const path = std::getenv("CADROVA_TRACE");
  if (path == nullptr || *path == '\0') return Aside(STDERR_FILENO);
  const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) {
    std::fprintf(stderr,
                 "libcadrova_trace.so: can't write to %s: %s; name another with CADROVA_TRACE\n",
                 path, std::strerror(errno));
    return Aside(STDERR_FILENO);
  }
  const int aside = Aside(file);
  close(file);
  return aside;
}

// Keeps from this thread the signal of a reader that has gone.
class BrokenPipeIgnored {
 public:
  BrokenPipeIgnored() {
    sigpending(&pending_);
    sigemptyset(&broken_pipe_);
    sigaddset(&broken_pipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken_pipe_, &mask_);
  }
  BrokenPipeIgnored(const BrokenPipeIgnored&) = delete;
  BrokenPipeIgnored& operator=(const BrokenPipeIgnored&) = delete;
  ~BrokenPipeIgnored() {
    constexpr timespec kNow = {};
    if (sigismember(&pending_, SIGPIPE) == 0) sigtimedwait(&broken_pipe_, nullptr, &kNow);
    pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  }

 private:
  sigset_t pending_, broken_pipe_, mask_;
};

void WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return;
    }
  }
}

// Where the process starts, before it can change anything.
[[maybe_unused]] const Output& at_start = Output::The();

}  // namespace

bool Shows(std::string_view what) {
  static const char* const wanted = std::getenv("CADROVA_TRACE_SHOW");
  return wanted != nullptr && wanted == what;
}

Output::Output() : descriptor_(Open()) {
  struct stat status;
  has_reader_ =
      fstat(descriptor_, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

std::string LineStart() {
  std::string line;
  line.reserve(200);
  const pid_t process = getpid(), thread = gettid();
  AppendJson(line, process);
  if (thread != process) {
    line += '.';
    AppendJson(line, thread);
  }
  return line += ' ';
}

void Output::Write(const std::string& lines) const {
  const int error = errno;
  if (has_reader_) {
    const BrokenPipeIgnored ignored;
    WriteAll(descriptor_, lines);
  } else {
    WriteAll(descriptor_, lines);
  }
  errno = error;
}

}  // namespace cadrova::watch
