// The settings of libcadrova_trace.so, and the file that it writes to.
#pragma once

#include <atomic>
#include <string>

namespace cadrova::tools {

// What the trace contains: the value of the environment variable CADROVA_TRACE_SHOW.
enum class TraceMode {
  kLines,    // one line per lookup
  kSteps,    // "steps": below each line, the lookup's calls to the device
  kSummary,  // "summary": a table at exit instead
};
TraceMode Mode();

// The start of each line: the process ID, then "." and the thread ID except on the main thread.
std::string LineStart();

// The file that the environment variable CADROVA_TRACE names, or else standard error as it was at
// the start of the process.
class Output {
 public:
  // Never destroyed: threads may still make lookups while the process exits.
  static Output& Instance() {
    static Output& output = *new Output;
    return output;
  }

  // Writes `lines` in one piece. The program sees no error and no signal. The first failure is
  // reported on standard error as it was at the start of the process.
  void Write(const std::string& lines);

 private:
  Output();
  void ReportFailure(int error);

  const int standard_error_;
  int descriptor_;
  int signal_;  // The signal that a failed write raises, or 0.
  std::string path_ = "standard error";
  std::atomic_flag has_reported_;
};

}  // namespace cadrova::tools
