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
#include <string_view>

#include "common/json_text.h"

namespace cadrova::tools {
namespace {

rlim_t Limit(int resource) {
  rlimit limit = {};
  getrlimit(static_cast<decltype(RLIMIT_NOFILE)>(resource), &limit);
  return limit.rlim_cur;
}

// A copy of `descriptor` with a high number, because programs may close and reopen low numbers.
// Programs that this one executes do not inherit it.
int HighCopy(int descriptor) {
  const int high = static_cast<int>(std::min(Limit(RLIMIT_NOFILE), rlim_t{1024})) - 8;
  return fcntl(descriptor, F_DUPFD_CLOEXEC, std::max(high, STDERR_FILENO + 1));
}

// The signal that a failed write raises in addition to its error, or 0.
int SignalOfFailedWrite(int descriptor) {
  struct stat status = {};
  fstat(descriptor, &status);
  if (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode)) return SIGPIPE;
  return Limit(RLIMIT_FSIZE) == RLIM_INFINITY ? 0 : SIGXFSZ;
}

// Discards `signal` if it is raised on this thread while this object exists. 0 is no signal.
class SignalBlocker {
 public:
  explicit SignalBlocker(int signal) : signal_(signal) {
    if (signal_ == 0) return;
    sigpending(&pending_);
    sigemptyset(&ignored_);
    sigaddset(&ignored_, signal_);
    pthread_sigmask(SIG_BLOCK, &ignored_, &mask_);
  }
  SignalBlocker(const SignalBlocker&) = delete;
  SignalBlocker& operator=(const SignalBlocker&) = delete;
  ~SignalBlocker() {
    if (signal_ == 0) return;
    constexpr timespec kNow = {};
    if (sigismember(&pending_, signal_) == 0) sigtimedwait(&ignored_, nullptr, &kNow);
    pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  }

 private:
  const int signal_;
  sigset_t pending_, ignored_, mask_;
};

// Returns 0, or the error that prevented the write.
int WriteAll(int descriptor, int signal, std::string_view text) {
  const SignalBlocker ignored(signal);
  while (!text.empty()) {
    // Not `write`, because a thread can be cancelled in it.
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

// Reads the settings when the trace library is loaded, before the program can change its
// environment or its descriptors. If an earlier initialiser makes a lookup, it reads them first.
[[gnu::constructor]] void ReadSettingsAtLoad() {
  Mode();
  Output::Instance();
}

}  // namespace

TraceMode Mode() {
  static const TraceMode mode = [] {
    const char* const variable = std::getenv("CADROVA_TRACE_SHOW");
    const std::string_view name = variable == nullptr ? "" : variable;
    if (name == "steps") return TraceMode::kSteps;
    return name == "summary" ? TraceMode::kSummary : TraceMode::kLines;
  }();
  return mode;
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

Output::Output() : standard_error_(HighCopy(STDERR_FILENO)), descriptor_(standard_error_) {
  const char* const path = std::getenv("CADROVA_TRACE");
  if (path != nullptr && *path != '\0') {
    path_ = path;
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) {
      ReportFailure(errno);
    } else {
      descriptor_ = HighCopy(file);
      close(file);
    }
  }
  signal_ = SignalOfFailedWrite(descriptor_);
}

void Output::Write(const std::string& lines) {
  const int error_before = errno;
  const int error = WriteAll(descriptor_, signal_, lines);
  if (error != 0 && error != EPIPE) ReportFailure(error);
  errno = error_before;
}

void Output::ReportFailure(int error) {
  if (has_reported_.test_and_set()) return;
  WriteAll(standard_error_, SIGPIPE,
           "libcadrova_trace.so: can't write to " + path_ + ": " + std::strerror(error) +
               "; name another with CADROVA_TRACE\n");
}

}  // namespace cadrova::tools
