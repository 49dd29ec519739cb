// Where libcadrova_trace.so writes: the file that CADROVA_TRACE names, or else the standard error
// that the process began with.
#pragma once

#include <string>
#include <string_view>

namespace cadrova::watch {

// What CADROVA_TRACE_SHOW asks for beyond a line a lookup, if it is set: "steps" or "summary".
bool Shows(std::string_view what);

// What each line begins with: the process and, but for the main one, the thread.
std::string LineStart();

class Output {
 public:
  // Never destroyed: threads may still ask while the process exits.
  static const Output& The() {
    static const Output& output = *new Output;
    return output;
  }

  // Writes `lines` in one piece. Nothing of it is left in the program: no error, and no signal
  // where the reader has gone.
  void Write(const std::string& lines) const;

 private:
  Output();

  int descriptor_;
  bool has_reader_;
};

}  // namespace cadrova::watch
