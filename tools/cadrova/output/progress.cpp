#include "output/progress.h"

#include <unistd.h>

#include <cstdio>

namespace cadrova::tools {

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

}  // namespace cadrova::tools
