// A program to trace. Its argument says what it does; it ends with status 3.

#include <android-base/properties.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "cadrova/cadrova.h"

using android::getCustIntFeature;

int main(int, char** argv) {
  const std::string what = argv[1];
  errno = 0;
  if (what == "looks-up-each-kind") {
    android::getCustBooleanFeature("bool", false);
    android::getCustIntFeature("int", 1);
    android::getCustFloatFeature("float", -1.5F);
    android::getCustStringFeature("no\n\x1F\"\\", "\xC3\xA9\x7F");
    android::getCustStringArrayFeature("string-array");
    android::getCustIntArrayFeature("none");
    android::getCustMapArrayFeature("map-array");
    android::setSimCadrova("first", "second");
  } else if (what == "reads-property") {
    android::base::GetProperty("unrelated", "");
    android::getSimCustIntFeature("ring", 1);
    android::setSimCadrova("k", "v");
  } else if (what == "sets-the-device") {
    android::base::SetProperty("ro.orvel.region", "EU");
    android::base::SetProperty("persist.sys.cota.carrier", "X1");
    getCustIntFeature("ring", 1);
    android::getRegionCustIntFeature("ring", 1);
    android::getCotaCustIntFeature("ring", 1);
    android::getCotaRegionCustIntFeature("ring", 1);
    android::getSimCustIntFeature("ring", 1);
    android::base::SetProperty("ro.orvel.region", "");
    android::getCotaRegionCustIntFeature("ring", 1);
  } else if (what == "has-threads") {
    const auto look_up = [] {
      for (int call = 0; call < 2000; ++call) getCustIntFeature("ring", call);
    };
    std::thread threads[8];
    for (std::thread& thread : threads) thread = std::thread(look_up);
    for (std::thread& thread : threads) thread.join();
  } else if (what == "has-a-long-line") {
    android::getCustStringFeature("missing", std::string(std::size_t{1} << 20U, 'x'));
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
    if (chdir("/") != 0) return 1;
    execvp(argv[2], argv + 2);
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
