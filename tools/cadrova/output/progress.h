// Shows the progress of long work on the last line of a terminal.
#pragma once

#include <string>

namespace cadrova::tools {

// Prints nothing if standard error is not a terminal, or if the work takes less than half a second.
class Progress {
 public:
  explicit Progress(std::string work);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();  // clears the line

  void Show(std::size_t done, std::size_t all);

 private:
  std::string work_;
  bool is_wanted_;
  long next_;  // when it is shown next, in milliseconds
  bool is_shown_ = false;
};

}  // namespace cadrova::tools
