// A program to trace. Its first argument says what it does; it ends with status 3.

#include <android-base/properties.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "cadrova/cadrova.h"

using android::getCustIntFeature;
using android::getSimCustIntFeature;

// For the core of traced_libraries.cpp.
#pragma GCC visibility push(default)
void (*hook)() = nullptr;
bool looks_up_at_exit = false;
#pragma GCC visibility pop

void LookUpAtDepth(int depth, int value);  // in traced_libraries.cpp

namespace {

bool leaves_lookups = false;

void Require(bool condition) {
  if (!condition) _exit(1);
}

sigjmp_buf start;

void LeaveByJump(int depth) {
  std::signal(SIGUSR1, [](int) {
    errno = 0;  // The thread sanitizer changes it.
    siglongjmp(start, 1);
  });
  hook = [] { std::raise(SIGUSR1); };
  if (sigsetjmp(start, 1) == 0) LookUpAtDepth(depth, -1);
}

void LeaveByException(int depth) {
  hook = [] { throw 1; };
  try {
    LookUpAtDepth(depth, -1);
  } catch (int thrown) {
    Require(thrown == 1);
  }
}

// The last is left in the last call of the lookup that contains them.
template <void (*leave)(int depth)>
void LeaveMany() {
  for (int i = 0; i < 9; ++i) leave(2);
  hook = [] { leave(2); };
}

// Leaves lookups at different depths of the stack. Every other lookup that ends contains some that
// do not.
template <void (*leave)(int depth)>
void LeaveLookups(char**) {
  leaves_lookups = true;
  for (int round = 0; round < 1000; ++round) {
    leave(round % 7);
    if (round % 2 != 0) hook = [] { LeaveMany<leave>(); };
    LookUpAtDepth(round % 5, round);
  }
}

// Each thread ends in a lookup, and makes another one after its stack is unwound. No function on
// the stack has objects to destroy: with libc++, this would end the program.
void ExitThreads(char**) {
  leaves_lookups = true;
  static int round;
  static pthread_key_t at_end;
  pthread_key_create(&at_end, [](void*) { LookUpAtDepth(round % 5, round); });
  for (round = 0; round < 1000; ++round) {
    pthread_t thread;
    const auto look_up = [](void*) -> void* {
      pthread_setspecific(at_end, &round);
      hook = [] { pthread_exit(nullptr); };
      LookUpAtDepth(round % 7, -1);
      return nullptr;
    };
    Require(pthread_create(&thread, nullptr, look_up, nullptr) == 0);
    pthread_join(thread, nullptr);
  }
}

// Lookups in lookups: in a signal handler, on the stack and on an alternate one, and in the core.
void NestLookups(char**) {
  char stack[1 << 18];  // Above the stack frames of the lookups.
  const stack_t alternate = {.ss_sp = stack, .ss_flags = 0, .ss_size = sizeof stack};
  Require(sigaltstack(&alternate, nullptr) == 0);
  const auto look_up_twice = [](void (*action)()) {
    hook = action;
    getCustIntFeature("ring", 1);  // Its first call of the core is a read.
    hook = action;
    getSimCustIntFeature("ring", 1);  // Its first call is an existence test.
  };
  for (const int flags : {0, SA_ONSTACK}) {
    struct sigaction action = {};
    action.sa_handler = [](int) { getCustIntFeature("missing", 2); };
    action.sa_flags = flags;
    Require(sigaction(SIGUSR1, &action, nullptr) == 0);
    look_up_twice([] { std::raise(SIGUSR1); });
  }
  look_up_twice([] { getCustIntFeature("missing", 2); });
  look_up_twice([] { android::getIntFromRust("M", "k", 2); });  // not shown
}

// With an argument, the number of threads, each has a key of 5000 characters.
void LookUpInThreads(char** arguments) {
  const bool is_long = arguments[0] != nullptr;
  const std::string key = "ring" + std::string(is_long ? 5000 : 0, 'z');
  std::vector<std::thread> threads(is_long ? std::strtoul(arguments[0], nullptr, 10) : 16);
  const auto look_up = [&] {
    for (int call = 0; call < (is_long ? 100 : 500); ++call) getCustIntFeature(key, call);
  };
  fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);  // The trace waits while a pipe is full.
  for (std::thread& thread : threads) thread = std::thread(look_up);
  for (std::thread& thread : threads) thread.join();
  fcntl(STDERR_FILENO, F_SETFL, 0);
}

// Lowers the limit below the size of the trace. Changes no pending signal.
void LimitFileSize(char**) {
  std::printf("%d\n", dup(STDIN_FILENO));  // as without a trace
  getCustIntFeature(std::string(5000, 'z'), 1);
  const rlimit limit = {500, 500};
  Require(setrlimit(RLIMIT_FSIZE, &limit) == 0);
  getCustIntFeature("ring", 2);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  for (const int pends : {0, 1}) {
    if (pends != 0) std::raise(SIGXFSZ);
    getCustIntFeature("ring", 3);
    sigpending(&signals);
    Require(sigismember(&signals, SIGXFSZ) == pends);
  }
}

// Looks up an item while no memory can be allocated.
void RunOutOfMemory(char**) {
  LookUpAtDepth(5000, 1);  // The stack can't grow later.
  const rlimit limit = {1, 1};
  Require(setrlimit(RLIMIT_AS, &limit) == 0);
  for (std::size_t size = 1U << 20U; size > 0; size = size > 4096 ? size / 2 : size - 8) {
    while (std::malloc(size) != nullptr) {
    }
  }
  errno = 0;
  hook = [] { getCustIntFeature("missing", 2); };  // The trace has no memory for its line.
  const int value = getCustIntFeature("ring", 2);
  Require(errno == 0 && value == 5);
}

// FIRST FILE: closes all descriptors from FIRST, and uses all that it can get for FILE.
void UseAllDescriptors(char** arguments) {
  const unsigned first = static_cast<unsigned>(std::atoi(arguments[0]));
  Require(close_range(first, ~0U, 0) == 0);
  if (first != 0) getCustIntFeature("ring", 1);
  Require(open(arguments[1], O_WRONLY) == static_cast<int>(first));
  while (open(arguments[1], O_WRONLY | O_APPEND) >= 0) {
  }
  errno = 0;
  getCustIntFeature("ring", 2);
  close_range(first, ~0U, 0);
}

void LookUpAtExit(char**) {
  for (char** variable = environ; *variable != nullptr; ++variable)
    std::memset(*variable, 'z', std::strlen(*variable));
  looks_up_at_exit = true;
  std::atexit([] { getCustIntFeature("atexit", 1); });
}

const std::map<std::string, void (*)(char** arguments)> kPrograms = {
    {"has-threads", LookUpInThreads},
    {"limits-file-size", LimitFileSize},
    // These need the core of traced_libraries.cpp.
    {"jumps", LeaveLookups<LeaveByJump>},
    {"throws", LeaveLookups<LeaveByException>},
    {"exits-threads", ExitThreads},
    {"nests-lookups", NestLookups},
    {"runs-out-of-memory", RunOutOfMemory},
    {"uses-all-descriptors", UseAllDescriptors},
    {"looks-up-at-exit", LookUpAtExit},
};

}  // namespace

// A lookup that is left does not release its memory.
extern "C" int __lsan_is_turned_off() { return leaves_lookups ? 1 : 0; }
// A lookup is not safe in a signal handler, but works in one that `raise` calls.
extern "C" const char* __tsan_default_options() { return "report_signal_unsafe=0"; }

int main(int, char** argv) {
  const std::string what = argv[1];
  errno = 0;
  if (const auto found = kPrograms.find(what); found != kPrograms.end()) {
    found->second(argv + 2);
  } else if (what == "looks-up-each-kind") {
    android::getCustBooleanFeature("bool", false);
    android::getCustIntFeature("int", 1);
    android::getCustFloatFeature("float", -1.5F);
    android::getCustStringFeature("no\n\x1F\"\\", "\xC3\xA9\x7F");
    android::getCustStringArrayFeature("string-array");
    android::getCustIntArrayFeature("none");
    android::getCustMapArrayFeature("map-array");
    android::setSimCadrova("first", "second");
    android::getCustFloatFeature("missing", NAN);
    android::getCustStringFeature("missing", std::string("a\0b", 3));
  } else if (what == "reads-property") {
    android::base::GetProperty("unrelated", "");
    getSimCustIntFeature("ring", 1);
    android::setSimCadrova("k", "v");
  } else if (what == "sets-the-device") {
    android::base::SetProperty("ro.orvel.region", "EU");
    android::base::SetProperty("persist.sys.cota.carrier", "X1");
    getCustIntFeature("ring", 1);
    android::getRegionCustIntFeature("ring", 1);
    android::getCotaCustIntFeature("ring", 1);
    android::getCotaRegionCustIntFeature("ring", 1);
    getSimCustIntFeature("ring", 1);
    android::getCustBooleanFeature("ring", false);
    android::base::SetProperty("ro.orvel.region", "");
    android::getCotaRegionCustIntFeature("ring", 1);
  } else if (what == "has-a-long-line") {
    std::string text;
    while (text.size() < 1U << 20U) text += "z\x01\xC3\xA9";
    android::getCustStringFeature("missing", text);
  } else if (what == "has-a-long-key") {
    getCustIntFeature("\xC3\xA9" + std::string(std::size_t{1} << 20U, 'z'), 1);
  } else if (what == "forks") {
    getCustIntFeature("ring", 0);
    getCustIntFeature("ring", 1);
    const pid_t child = fork();
    if (child != 0) waitpid(child, nullptr, 0);
    getCustIntFeature("missing", child == 0 ? 2 : 3);
  } else if (what == "runs-another-elsewhere") {
    const char* const show = std::getenv("CADROVA_TRACE_SHOW");
    std::printf("%s,%s\n", std::getenv("LD_PRELOAD"), show == nullptr ? "" : show);
    std::fflush(stdout);
    getCustIntFeature("ring", 0);
    if (chdir("/") != 0) return 1;
    execvp(argv[2], argv + 2);
  } else if (what == "runs-another-without-files") {
    getCustIntFeature("ring", 1);
    while (access(argv[2], F_OK) == 0) usleep(1000);  // Another process removes the file.
    getCustIntFeature("ring", 2);
    close_range(3, 31, 0);
    close_range(33, ~0U, 0);  // 32 is the trace library if its path contains a blank.
    for (int low = 3; low < 64; ++low) open(argv[3], O_WRONLY);
    execvp(argv[4], argv + 4);
  } else if (what == "replaces-the-file") {
    close_range(3, ~0U, 0);
    const std::string file = argv[2] + std::string("/trace"), other = file + ".new";
    close(open(other.c_str(), O_WRONLY | O_CREAT, 0600));
    if (rename(other.c_str(), file.c_str()) != 0) return 1;
    getCustIntFeature("ring", 1);
  } else if (what == "is-killed") {
    getCustIntFeature("ring", 1);
    std::raise(SIGTERM);
  } else if (what == "reopens-standard-error") {
    for (int low = STDERR_FILENO; low < 32; ++low) close(low);
    errno = 0;
    if (open(argv[2], O_WRONLY) != STDERR_FILENO) return 1;
    getCustIntFeature("ring", 1);
  }
  return errno == 0 ? 3 : 1;
}
