#include "output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "common/json_text.h"

namespace cadrova::tools {
namespace {

rlim_t Limit(int resource) {
  rlimit limit = {};
  getrlimit(static_cast<decltype(RLIMIT_NOFILE)>(resource), &limit);
  return limit.rlim_cur;
}

// A descriptor that the program neither meets nor hands on, whatever it does with the first ones.
int Aside(int descriptor) {
  const int far = static_cast<int>(std::min(Limit(RLIMIT_NOFILE), rlim_t{1024})) - 8;
  return fcntl(descriptor, F_DUPFD_CLOEXEC, std::max(far, STDERR_FILENO + 1));
}

// The signal that a write may raise, beyond its error; or 0.
int SignalOfWriting(int descriptor) {
  struct stat status = {};
  fstat(descriptor, &status);
  if (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode)) return SIGPIPE;
  return Limit(RLIMIT_FSIZE) == RLIM_INFINITY ? 0 : SIGXFSZ;
}

// Keeps from this thread a signal, if it is one, that is raised meanwhile.
class SignalIgnored {
 public:
  explicit SignalIgnored(int signal) : signal_(signal) {
    if (signal_ == 0) return;
    sigpending(&pending_);
    sigemptyset(&ignored_);
    sigaddset(&ignored_, signal_);
    pthread_sigmask(SIG_BLOCK, &ignored_, &mask_);
  }
  SignalIgnored(const SignalIgnored&) = delete;
  SignalIgnored& operator=(const SignalIgnored&) = delete;
  ~SignalIgnored() {
    if (signal_ == 0) return;
    constexpr timespec kNow = {};
    if (sigismember(&pending_, signal_) == 0) sigtimedwait(&ignored_, nullptr, &kNow);
    pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  }

 private:
  const int signal_;
  sigset_t pending_, ignored_, mask_;
};

// Returns the error that prevents it, or 0.
int WriteAll(int descriptor, int signal, std::string_view text) {
  const SignalIgnored ignored(signal);
  while (!text.empty()) {
    // By its number, since a thread can be cancelled in `write`.
    const long count = syscall(SYS_write, descriptor, text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      pollfd until_ready = {.fd = descriptor, .events = POLLOUT, .revents = 0};
      poll(&until_ready, 1, -1);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// Where the process starts, before it can change anything.
[[maybe_unused]] const Output& at_start = Output::The();

}  // namespace

bool Shows(std::string_view what) {
  static const char* const wanted = std::getenv("CADROVA_TRACE_SHOW");
  return wanted != nullptr && wanted == what;
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

Output::Output() : standard_error_(Aside(STDERR_FILENO)), descriptor_(standard_error_) {
  const char* const path = std::getenv("CADROVA_TRACE");
  if (path != nullptr && *path != '\0') {
    path_ = path;
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) {
      Complain(errno);
    } else {
      descriptor_ = Aside(file);
      close(file);
    }
  }
  signal_ = SignalOfWriting(descriptor_);
}

void Output::Write(const std::string& lines) {
  const int error_before = errno;
  const int error = WriteAll(descriptor_, signal_, lines);
  if (error != 0 && error != EPIPE) Complain(error);
  errno = error_before;
}

void Output::Complain(int error) {
  if (has_complained_.test_and_set()) return;
  WriteAll(standard_error_, SIGPIPE,
           "libcadrova_trace.so: can't write to " + path_ + ": " + std::strerror(error) +
               "; name another with CADROVA_TRACE\n");
}

}  // namespace cadrova::tools
