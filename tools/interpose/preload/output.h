// Where libcadrova_trace.so writes: the file that CADROVA_TRACE names, or else the standard error
// that the process began with.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace cadrova::tools {

// What CADROVA_TRACE_SHOW asks for beyond a line a lookup, if it is set: "steps" or "summary".
bool Shows(std::string_view what);

// What each line begins with: the process and, but for the main one, the thread.
std::string LineStart();

class Output {
 public:
  // Never destroyed: threads may still ask while the process exits.
  static Output& The() {
    static Output& output = *new Output;
    return output;
  }

  // Writes `lines` in one piece. Nothing of it is left in the program: no error and no signal. The
  // first failure is said on the standard error that the process began with.
  void Write(const std::string& lines);

 private:
  Output();
  void Complain(int error);

  const int standard_error_;
  int descriptor_;
  int signal_;  // that a write may raise, or 0
  std::string path_ = "standard error";
  std::atomic_flag has_complained_;
};

}  // namespace cadrova::tools
