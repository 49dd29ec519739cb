// A lookup of the program, and its line in the trace.
#pragma once

#include <cerrno>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "cadrova/value.h"
#include "common/text.h"
#include "output.h"
#include "thread.h"

namespace cadrova::tools {

// The program sees no change of `errno`.
class ErrnoKeeper {
 public:
  ErrnoKeeper() = default;
  ErrnoKeeper(const ErrnoKeeper&) = delete;
  ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
  ~ErrnoKeeper() { errno = error_; }

 private:
  const int error_ = errno;
};

// Exists from the start of the lookup until its line is written. `frame` is the stack frame of the
// interposed function.
class TracedLookup {
 public:
  TracedLookup(const void* frame, const char* function, const std::string& key,
               const auto&... default_value)
      : frame_(frame) {
    const ErrnoKeeper errno_keeper;
    thread_ = Thread::Current();
    if (thread_ == nullptr) {
      Output::Instance().ReportLostLine();
      return;
    }
    RunningLookup& lookup = thread_->Push(frame);
    const RunningLookup::InUse in_use(lookup);
    lookup.is_sim = std::string_view(function).starts_with("getSim");
    if (Mode() == TraceMode::kSummary) {
      lookup.line += std::string_view(key);
    } else {
      thread_->AppendIdsTo(lookup.line);
      AppendCall(lookup.line, function, key, default_value...);
    }
  }
  TracedLookup(const TracedLookup&) = delete;
  TracedLookup& operator=(const TracedLookup&) = delete;
  ~TracedLookup() {
    if (thread_ != nullptr) thread_->Pop(frame_);
    running_device_call = device_call_;
  }

  // Whether the library calls the function with `frame` as a part of a lookup that runs.
  static bool IsPartOfLookup(const void* frame);

  template <class T>
  void Finish(const T& value, const auto&... default_value) {
    const ErrnoKeeper errno_keeper;
    RunningLookup* const lookup = FindLookup();
    if (lookup == nullptr) return;
    const RunningLookup::InUse in_use(*lookup);
    const bool has_source = lookup->chain.HasSource(IsDefault(value, default_value...));
    if (Mode() == TraceMode::kSummary) {
      AppendJson(lookup->steps, value);
      CountValue(*lookup, host::ToString(host::KindOf(host::Value(std::in_place_type<T>))),
                 has_source);
    } else {
      lookup->line += " = ";
      AppendJson(lookup->line, value);
      WriteValue(*lookup, has_source);
    }
  }
  void FinishSetSim();

 private:
  static bool IsDefault(const auto& value) { return value.empty(); }
  static bool IsDefault(int value, int default_value) { return value == default_value; }
  static bool IsDefault(float value, float default_value) {
    return std::isnan(value)
               ? std::isnan(default_value)
               : value == default_value && std::signbit(value) == std::signbit(default_value);
  }
  // The core returns a string up to its first NUL.
  static bool IsDefault(const std::string& value, const std::string& default_value) {
    return std::strcmp(value.c_str(), default_value.c_str()) == 0;
  }
  static bool IsDefault(bool value, const bool& default_value) {
    return value == core::IsTrue(core::LowestBit(default_value));
  }

  RunningLookup* FindLookup() const { return thread_ == nullptr ? nullptr : thread_->Find(frame_); }
  static void WriteValue(RunningLookup& lookup, bool has_source);
  // The key is in `line`, the value in `steps`.
  static void CountValue(RunningLookup& lookup, const char* kind, bool has_source);

  const void* const frame_;
  // If the device makes this lookup, its call is not the one that this lookup's calls are part of.
  const void* const device_call_ = std::exchange(running_device_call, nullptr);
  Thread* thread_;
};

}  // namespace cadrova::tools
