// The progress of long work, on the last line of a terminal.
#pragma once

#include <chrono>
#include <string>
#include <utility>

namespace cadrova::tools {

// Prints nothing if standard error is no terminal, or the work takes less than half a second.
class Progress {
 public:
  explicit Progress(std::string work) : work_(std::move(work)) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();  // clears the line

  void Show(std::size_t done, std::size_t all);

 private:
  using Clock = std::chrono::steady_clock;

  std::string work_;
  Clock::time_point next_ = Clock::now() + std::chrono::milliseconds(500);
  bool is_shown_ = false;
};

}  // namespace cadrova::tools
