#include "output/progress.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <utility>

namespace cadrova::tools {
namespace {

long Milliseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace

Progress::Progress(std::string work)
    : work_(std::move(work)), is_wanted_(isatty(STDERR_FILENO) != 0), next_(Milliseconds() + 500) {}

void Progress::Show(std::size_t done, std::size_t all) {
  if (!is_wanted_ || Milliseconds() < next_) return;
  next_ = Milliseconds() + 100;
  is_shown_ = true;
  std::fprintf(stderr, "\rcadrova: %s: %zu %%\x1B[K", work_.c_str(), 100 * done / all);
}

Progress::~Progress() {
  if (is_shown_) std::fputs("\r\x1B[K", stderr);
}

}  // namespace cadrova::tools
