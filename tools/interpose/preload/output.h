// The settings of libcadrova_trace.so, and the file that it writes to.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <string_view>

#include "common/text_buffer.h"

namespace cadrova::tools {

// What the trace contains: the value of the environment variable CADROVA_TRACE_SHOW.
enum class TraceMode {
  kLines,    // one line per lookup
  kSteps,    // "steps": below each line, the lookup's calls to the device
  kSummary,  // "summary": a table at exit instead
};
TraceMode Mode();

// An open file of the trace. A program may close its descriptor and reuse the number.
class TraceFile {
 public:
  // Copies `descriptor`. If the program closes the copy, the file is opened again as `path`, unless
  // that is NULL.
  // Returns false, with the reason in `errno`, if there is no copy.
  bool Use(int descriptor, const char* path);

  // A descriptor of the file, or -1 if there is none any more. When it is lost, `errno` is the
  // reason; later, it is 0.
  int Descriptor();

  bool IsPipe() const { return S_ISFIFO(mode_); }
  // The signal that a write may raise, or 0.
  int SignalOfWrite() const;

 private:
  bool IsOpenAs(int descriptor) const;

  const char* path_ = nullptr;
  std::atomic<int> descriptor_ = -1;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  mode_t mode_ = 0;
  bool is_terminal_ = false;
};

// The file that the environment variable CADROVA_TRACE names, or else standard error as it was at
// the start of the process.
class Output {
 public:
  static Output& Instance();

  // Writes `lines` in one piece. If it is longer than a pipe keeps in one piece, its longest values
  // are cut. The program sees no error and no signal.
  void Write(const TextBuffer& lines);
  // Writes a table of any length. To a pipe, in pieces of whole rows.
  void WriteTable(const TextBuffer& table);

  // Each of these writes a message to standard error as it was at the start of the process, the
  // first time.
  void ReportLostLine();
  void ReportNoDefinition(const char* function);
  void ReportUnknownCaller(const void* address);

 private:
  Output() { Open(); }
  void Open();
  void ReportFailure(int error);
  void Report(std::atomic_flag& is_reported, std::string_view message);

  TraceFile standard_error_, named_;
  TraceFile* file_ = &standard_error_;
  const char* path_ = nullptr;  // NULL for standard error
  std::atomic_flag has_failed_, has_lost_line_, has_no_definition_, has_unknown_caller_;
};

}  // namespace cadrova::tools
