// The settings of libcadrova_trace.so, and the file that it writes to.
#pragma once

#include <atomic>
#include <string>

namespace cadrova::tools {

// What is written. The environment variable CADROVA_TRACE_SHOW says it.
enum class TraceMode {
  kLines,    // one line per lookup
  kSteps,    // "steps": below each line, the lookup's calls to the device
  kSummary,  // "summary": a table at exit instead
};
TraceMode Mode();

// The process ID, which each line starts with, followed by "." and the thread ID except on the
// main thread.
std::string LineStart();

// The file that the environment variable CADROVA_TRACE names, or the standard error that the
// process started with.
class Output {
 public:
  // Never destroyed, since threads may make lookups while the process exits.
  static Output& The() {
    static Output& output = *new Output;
    return output;
  }

  // Writes `lines` in one piece. The program sees neither an error nor a signal. The first failure
  // is reported on the standard error that the process started with.
  void Write(const std::string& lines);

 private:
  Output();
  void ReportFailure(int error);

  const int standard_error_;
  int descriptor_;
  int signal_;  // that a write may raise, or 0
  std::string path_ = "standard error";
  std::atomic_flag has_reported_;
};

}  // namespace cadrova::tools
