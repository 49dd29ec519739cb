// The lookups that run on a thread. Stored apart from the program's stack, because a signal handler
// may jump out of a lookup, whose frame is then gone.
#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

#include "common/text_buffer.h"
#include "interpose/chain.h"

namespace cadrova::tools {

class MapList {
 public:
  struct Map {
    std::string_view name;
    bool is_sim;
  };

  void push_back(const Map& map) {
    if (size_ == slots_.size()) return;
    names_ += map.name;
    slots_[size_++] = {names_.Text().size(), map.is_sim};
  }
  Map operator[](std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : slots_[i - 1].name_end;
    return {names_.Text().substr(begin, slots_[i].name_end - begin), slots_[i].is_sim};
  }
  Map back() const { return (*this)[size_ - 1]; }
  std::size_t size() const { return size_; }
  // False if memory ran out.
  bool IsComplete() const { return names_.IsComplete(); }
  void Clear() {
    names_.Clear();
    size_ = 0;
  }

 private:
  struct Slot {
    std::size_t name_end;
    bool is_sim;
  };
  TextBuffer names_;
  std::array<Slot, 8> slots_;  // No chain has more maps.
  std::size_t size_ = 0;
};

struct RunningLookup {
  // Exists while this thread changes or reads the lookup: then a signal handler must not.
  class InUse {
   public:
    explicit InUse(RunningLookup& lookup) : lookup_(lookup) {
      lookup_.is_in_use = true;
      std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;
    ~InUse() {
      std::atomic_signal_fence(std::memory_order_seq_cst);
      lookup_.is_in_use = false;
    }

   private:
    RunningLookup& lookup_;
  };

  const void* frame;  // of the interposed function
  volatile bool is_in_use;
  bool is_sim;
  TextBuffer line;   // in a summary, the key
  TextBuffer steps;  // if they are shown; in a summary, the value
  BasicChain<MapList> chain;
};

class Thread {
 public:
  // The calling thread, or NULL if memory ran out.
  static Thread* Current() { return current_ != nullptr ? current_ : Start(); }

  // Starts a lookup in the function with the stack frame `frame`. It is in use until the caller has
  // an `InUse` of it.
  RunningLookup& Push(const void* frame);
  // The lookup that runs in the function with `frame`, or NULL.
  RunningLookup* Find(const void* frame);
  // The innermost lookup that calls the function with `frame`, or NULL.
  RunningLookup* FindCallerOf(const void* frame) {
    EndUpTo(frame);
    return depth_ == 0 ? nullptr : &lookups_[depth_ - 1];
  }
  // Ends the lookup that runs in the function with `frame`.
  void Pop(const void* frame) { EndUpTo(frame); }

  // Appends the start of a line: the process ID, then "." and the thread ID except on the main
  // thread.
  void AppendIdsTo(TextBuffer& line);

 private:
  // Ends lookups whose functions have returned if the function with `frame` runs. Their frames are
  // at the same place or below it.
  void EndUpTo(const void* frame) {
    while (depth_ != 0 && lookups_[depth_ - 1].frame <= frame && HasReturned(frame)) --depth_;
  }
  bool HasReturned(const void* frame) const;

  static Thread* Start();
  static void End(void* thread);
  static const bool releases_memory_;
  static constinit thread_local Thread* current_;

  std::array<RunningLookup, 32> lookups_;
  std::size_t depth_ = 0;
  pid_t thread_id_ = 0, process_id_ = 0;
};

}  // namespace cadrova::tools
