#include "thread.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <new>

#include "common/json_text.h"

namespace cadrova::tools {
namespace {

pthread_key_t at_thread_end;

// Whether this function runs on the alternate stack for signals, but the function with `frame` does
// not. Then it is unknown which of them called the other.
bool IsOnAnotherStackThan(const void* frame) {
  stack_t stack;
  return sigaltstack(nullptr, &stack) == 0 && (stack.ss_flags & SS_ONSTACK) != 0 &&
         static_cast<std::size_t>(static_cast<const char*>(frame) -
                                  static_cast<const char*>(stack.ss_sp)) >= stack.ss_size;
}

}  // namespace

constinit thread_local Thread* Thread::current_ = nullptr;

// False before this binary is initialised. Then the memory of the thread is not released.
const bool Thread::releases_memory_ = pthread_key_create(&at_thread_end, End) == 0;

Thread* Thread::Start() {
  void* const memory =
      mmap(nullptr, sizeof(Thread), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  current_ = new (memory) Thread;
  if (releases_memory_) pthread_setspecific(at_thread_end, current_);
  return current_;
}

void Thread::End(void* thread) {
  current_ = nullptr;
  static_cast<Thread*>(thread)->~Thread();
  munmap(thread, sizeof(Thread));
}

RunningLookup& Thread::Push(const void* frame) {
  EndUpTo(frame);
  if (depth_ == lookups_.size()) depth_ = 0;  // Something jumped out of most of them.
  RunningLookup& lookup = lookups_[depth_];
  // Twice, because a signal handler may make a lookup before or after `depth_` changes.
  lookup.frame = frame;
  lookup.is_in_use = true;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  ++depth_;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  lookup.frame = frame;
  lookup.is_in_use = true;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  lookup.line.Clear();
  lookup.steps.Clear();
  lookup.chain.Clear();
  return lookup;
}

RunningLookup* Thread::Find(const void* frame) {
  EndUpTo(static_cast<const char*>(frame) - 1);
  return depth_ != 0 && lookups_[depth_ - 1].frame == frame ? &lookups_[depth_ - 1] : nullptr;
}

bool Thread::HasReturned(const void* frame) const {
  const void* const last = lookups_[depth_ - 1].frame;
  return last == frame || !IsOnAnotherStackThan(last);
}

void Thread::AppendIdsTo(TextBuffer& line) {
  // A child of `vfork` or `clone` runs with the parent's memory, so the stored IDs may be another
  // process's. The thread ID tells.
  const pid_t thread = gettid();
  if (thread != thread_id_) {
    thread_id_ = thread;
    process_id_ = getpid();
  }
  AppendJson(line, process_id_);
  if (thread != process_id_) {
    line += '.';
    AppendJson(line, thread);
  }
  line += ' ';
}

}  // namespace cadrova::tools
