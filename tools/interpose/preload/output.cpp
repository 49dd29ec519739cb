#include "output.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "cut_values.h"
#include "interpose/next_definition.h"
#include "utf8.h"

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

// Does not wait for the reader of a FIFO.
int OpenForWriting(const char* path, int flags) {
  return open(path, O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | flags, 0666);
}

// An open file that `cadrova trace` gives to the program, and its child processes inherit.
struct Given {
  int descriptor = -1;
  unsigned long device = 0, inode = 0;

  bool Read(const char* variable) {
    return std::sscanf(variable, "%d:%lu:%lu", &descriptor, &device, &inode) == 3;
  }
  bool IsOpenAs(int other) const {
    struct stat status;
    return fstat(other, &status) == 0 && status.st_dev == device && status.st_ino == inode;
  }
};

// Defers the cancellation of this thread while this object exists: a lookup that is not traced may
// contain no cancellation point. bionic cancels no threads. It does not exist around `SYS_write`,
// which is no cancellation point.
class CancellationBlocker {
#ifndef __BIONIC__
 public:
  CancellationBlocker() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state_); }
  CancellationBlocker(const CancellationBlocker&) = delete;
  CancellationBlocker& operator=(const CancellationBlocker&) = delete;
  ~CancellationBlocker() { pthread_setcancelstate(state_, nullptr); }

 private:
  int state_ = 0;
#endif
};

// Blocks `signal` on this thread while this object exists. 0 is no signal.
class SignalBlocker {
 public:
  explicit SignalBlocker(int signal) : signal_(signal) {
    if (signal_ == 0) return;
    sigemptyset(&blocked_);
    sigaddset(&blocked_, signal_);
    pthread_sigmask(SIG_BLOCK, &blocked_, &mask_);
    sigset_t pending;
    was_pending_ = sigismember(&mask_, signal_) == 1 && sigpending(&pending) == 0 &&
                   sigismember(&pending, signal_) == 1;
  }
  SignalBlocker(const SignalBlocker&) = delete;
  SignalBlocker& operator=(const SignalBlocker&) = delete;
  ~SignalBlocker() {
    if (signal_ != 0) pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  }

  // Discards the signal that a failed write has raised.
  void Discard() const {
    constexpr timespec kNow = {};
    const CancellationBlocker no_cancellation;
    if (signal_ != 0 && !was_pending_) sigtimedwait(&blocked_, nullptr, &kNow);
  }

 private:
  const int signal_;
  bool was_pending_ = false;
  sigset_t blocked_, mask_;
};

// Returns 0, or the error that prevented the write.
int WriteAll(int descriptor, int signal, std::string_view text) {
  while (!text.empty()) {
    int error = 0;
    {
      const SignalBlocker blocker(signal);
      const long count = syscall(SYS_write, descriptor, text.data(), text.size());
      if (count >= 0) {
        text.remove_prefix(static_cast<std::size_t>(count));
      } else {
        error = errno;
        if (error == EPIPE || error == EFBIG) blocker.Discard();
      }
    }
    if (error == EAGAIN) {
      const CancellationBlocker no_cancellation;
      pollfd until_ready = {.fd = descriptor, .events = POLLOUT, .revents = 0};
      poll(&until_ready, 1, -1);
    } else if (error != 0 && error != EINTR) {
      return error;
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

bool TraceFile::Use(int descriptor, const char* path) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  path_ = path;
  device_ = status.st_dev;
  inode_ = status.st_ino;
  mode_ = status.st_mode;
  is_terminal_ = isatty(descriptor) == 1;
  // A pipe is opened once more, so that no write waits while a signal is blocked.
  char name[32];
  std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
  const int own = IsPipe() ? OpenForWriting(name, 0) : -1;
  descriptor_ = HighCopy(own < 0 ? descriptor : own);
  if (own >= 0) close(own);
  return descriptor_ >= 0;
}

bool TraceFile::IsOpenAs(int descriptor) const {
  struct stat status;
  return fstat(descriptor, &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

int TraceFile::Descriptor() {
  int descriptor = descriptor_;
  errno = 0;
  if (descriptor < 0 || IsOpenAs(descriptor)) return descriptor;
  const CancellationBlocker no_cancellation;
  int copy = -1;
  const int file = path_ == nullptr ? -1 : OpenForWriting(path_, 0);
  int error = errno;
  if (file >= 0) {
    if (IsOpenAs(file)) copy = HighCopy(file);
    error = copy < 0 ? ESTALE : 0;
    close(file);
  }
  if (descriptor_.compare_exchange_strong(descriptor, copy)) {
    descriptor = copy;
  } else if (copy >= 0) {
    close(copy);  // Another thread was first.
  }
  errno = error;
  return descriptor;
}

int TraceFile::SignalOfWrite() const {
  if (S_ISFIFO(mode_) || S_ISSOCK(mode_)) return SIGPIPE;
  if (is_terminal_) return SIGTTOU;  // Raised in a background process if `tostop` is set.
  return S_ISREG(mode_) && Limit(RLIMIT_FSIZE) != RLIM_INFINITY ? SIGXFSZ : 0;
}

Output& Output::Instance() {
  // Never destroyed: threads may still make lookups while the process exits.
  alignas(Output) static char memory[sizeof(Output)];
  static Output* const output = new (memory) Output;
  return *output;
}

void Output::Open() {
  standard_error_.Use(STDERR_FILENO, nullptr);
  const char* const path = std::getenv("CADROVA_TRACE");
  if (path == nullptr || *path == '\0') return;
  path_ = strdup(path);
  file_ = &named_;
  const char* const variable = std::getenv("CADROVA_TRACE_DESCRIPTOR");
  Given given;
  const bool is_given = variable != nullptr && given.Read(variable);
  const int inherited = is_given && given.IsOpenAs(given.descriptor) ? given.descriptor : -1;
  const int file = inherited >= 0 ? inherited : OpenForWriting(path, is_given ? 0 : O_CREAT);
  // If it was given, and the program has closed it, it may have no reader any more, or the name may
  // mean another file in this process.
  const bool is_it = file >= 0 && (!is_given || given.IsOpenAs(file));
  if (!(is_it && named_.Use(file, path_)) && !is_given) ReportFailure(errno);
  if (file >= 0 && file != inherited) close(file);
}

void Output::Write(const TextBuffer& lines) {
  const int descriptor = file_->Descriptor();
  if (descriptor < 0) return path_ == nullptr || errno == 0 ? void() : ReportFailure(errno);
  TextBuffer cut;
  const bool is_too_long = file_->IsPipe() && lines.Text().size() > PIPE_BUF;
  if (is_too_long) AppendCut(cut, lines.Text(), PIPE_BUF);
  if (!lines.IsComplete() || !cut.IsComplete()) return ReportLostLine();
  const int error =
      WriteAll(descriptor, file_->SignalOfWrite(), is_too_long ? cut.Text() : lines.Text());
  // A reader may have seen enough.
  if (error != 0 && error != EPIPE) ReportFailure(error);
}

void Output::WriteTable(const TextBuffer& table) {
  if (!file_->IsPipe() || !table.IsComplete()) return Write(table);
  TextBuffer piece;
  for (std::string_view rest = table.Text(); !rest.empty();) {
    // A row that is longer is a piece of its own.
    const std::size_t last =
        rest.size() <= PIPE_BUF ? rest.size() - 1 : rest.rfind('\n', PIPE_BUF - 1);
    const std::size_t size = (last == std::string_view::npos ? rest.find('\n') : last) + 1;
    piece.Clear();
    Write(piece += rest.substr(0, size));
    rest.remove_prefix(size);
  }
}

void Output::Report(std::atomic_flag& is_reported, std::string_view message) {
  const int descriptor = standard_error_.Descriptor();
  if (is_reported.test_and_set() || descriptor < 0) return;
  WriteAll(descriptor, standard_error_.SignalOfWrite(), message);
}

void Output::ReportLostLine() {
  Report(has_lost_line_, "libcadrova_trace.so: out of memory; a line is missing\n");
}

void Output::ReportFailure(int error) {
  TextBuffer message;
  message += "libcadrova_trace.so: can't write to ";
  host::AppendSafe(message, path_ == nullptr ? "standard error" : path_);
  message += ": ";
  message += error == ENXIO ? "no process reads it" : std::strerror(error);
  message += "; name another with CADROVA_TRACE\n";
  Report(has_failed_, message.Text());
}

void Output::ReportNoDefinition(const char* function) {
  TextBuffer message;
  message += "libcadrova_trace.so: no other definition of ";
  message += function;
  message += " is loaded; its calls return what a missing item returns\n";
  Report(has_no_definition_, message.Text());
}

void Output::ReportUnknownCaller(const void* address) {
  if (has_unknown_caller_.test()) return;
  TextBuffer path, message;
  AppendBinaryPath(path, address);
  message += "libcadrova_trace.so: calls from ";
  host::AppendSafe(message, path.Text().empty() ? "the program" : path.Text());
#ifdef _LIBCPP_VERSION
  constexpr char kStandardLibrary[] = "libc++";
#else
  constexpr char kStandardLibrary[] = "libstdc++";
#endif
  message += " to the core are not logged: it does not define the lookups for ";
  message += kStandardLibrary;
  message += "; if it does for another standard library, use the trace library for that\n";
  Report(has_unknown_caller_, message.Text());
}

}  // namespace cadrova::tools
