// Finds the next definition of a function that this binary also defines, and from where the
// function is called. Does not call `dlsym`, which clears a pending `dlerror`, looks only into this
// binary's linker namespace, and on bionic does not find what is loaded locally.
#pragma once

#include <dlfcn.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "common/text_buffer.h"

namespace cadrova::tools {

enum class Caller {
  kLibrary,     // a binary that defines the lookups, by the names that they have in this binary
  kDefinition,  // the binary with the next definition, which calls itself
  kOther
};

struct Resolution {
  void* next = nullptr;  // NULL if there is no other definition
  Caller caller = Caller::kOther;
};

// The resolutions of a function, by the binary that calls it.
class Resolutions {
 public:
  // Finds the function named `symbol` in all loaded binaries, as the loader resolves a reference in
  // the binary that contains `caller`, but never in this binary.
  Resolution Find(const char* symbol, std::uintptr_t caller) {
    for (const Permanent& known : permanent_) {
      if (!known.is_complete.load(std::memory_order_acquire)) break;
      if (known.binary.Contains(caller)) return known.resolution;
    }
    return Search(symbol, caller);
  }

 private:
  struct Range {
    std::uintptr_t begin = 0;
    std::size_t size = 0;
    bool Contains(std::uintptr_t address) const { return address - begin < size; }
  };
  // For a binary that is never unloaded, and a definition in such a binary.
  struct Permanent {
    Range binary;
    Resolution resolution;
    std::atomic<bool> is_complete = false;
  };
  // Valid until a binary is loaded or unloaded.
  struct Recent {
    Range binary;
    Resolution resolution;
    std::uint64_t generation = 0;
  };

  Resolution Search(const char* symbol, std::uintptr_t caller);

  Permanent permanent_[4];
  std::atomic<std::size_t> permanent_size_ = 0;
  Recent recent_;
  std::atomic_flag is_recent_in_use_;
};

// Appends the path of the binary that contains `address`; nothing for the program itself.
void AppendBinaryPath(TextBuffer& text, const void* address);

// The symbol name of a function, which depends on the standard library.
template <auto* function>
class Symbol {
 public:
  static const char* Name() { return at_load_ != nullptr ? at_load_ : Find(); }

 private:
  static const char* Find() {
    Dl_info symbol;
    return dladdr(reinterpret_cast<const void*>(function), &symbol) == 0 ? nullptr
                                                                         : symbol.dli_sname;
  }
  // Found when this binary is loaded, because `dladdr` may wait for a library that another thread
  // loads. NULL before that.
  static inline const char* const at_load_ = Find();
};

// The function `own` of this binary, and the next definition of it.
template <auto* own>
class NextDefinition {
 public:
  static Resolution Find(const void* caller) {
    return resolutions_.Find(Symbol<own>::Name(), reinterpret_cast<std::uintptr_t>(caller));
  }
  static auto* Function(const Resolution& resolution) {
    return reinterpret_cast<decltype(own)>(resolution.next);
  }

 private:
  static inline constinit Resolutions resolutions_;
};

}  // namespace cadrova::tools
