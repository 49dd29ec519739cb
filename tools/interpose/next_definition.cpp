#include "interpose/next_definition.h"

#include <elf.h>
#include <link.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <bitset>
#include <csignal>
#include <cstring>
#include <limits>

#include "cadrova/cadrova.h"
#include "interpose/call.h"

namespace cadrova::tools {
namespace {

template <class T>
T* At(std::uintptr_t address) {
  return reinterpret_cast<T*>(address);  // NOLINT(performance-no-int-to-ptr)
}

// A binary that the loader has loaded.
class Binary {
 public:
  explicit Binary(const dl_phdr_info& info) : path_(info.dlpi_name), base_(info.dlpi_addr) {
    for (std::size_t i = 0; i < info.dlpi_phnum; ++i) {
      const ElfW(Phdr)& segment = info.dlpi_phdr[i];
      if (segment.p_type == PT_LOAD) {
        begin_ = std::min<std::uintptr_t>(begin_, base_ + segment.p_vaddr);
        end_ = std::max<std::uintptr_t>(end_, base_ + segment.p_vaddr + segment.p_memsz);
      } else if (segment.p_type == PT_DYNAMIC) {
        dynamic_ = At<const ElfW(Dyn)>(base_ + segment.p_vaddr);
      }
    }
    for (const auto* entry = dynamic_; entry != nullptr && entry->d_tag != DT_NULL; ++entry) {
      if (entry->d_tag == DT_STRTAB) strings_ = Pointer<char>(*entry);
      if (entry->d_tag == DT_SYMTAB) symbols_ = Pointer<ElfW(Sym)>(*entry);
      if (entry->d_tag == DT_GNU_HASH) gnu_hash_ = Pointer<std::uint32_t>(*entry);
      if (entry->d_tag == DT_HASH) hash_ = Pointer<std::uint32_t>(*entry);
    }
  }

  std::uintptr_t begin() const { return begin_; }
  std::size_t size() const { return end_ - begin_; }
  const char* path() const { return path_; }
  bool Contains(std::uintptr_t address) const { return address - begin_ < size(); }

  // Whether the binary is `name`, by which another binary needs it.
  bool IsNamed(const char* name) const {
    const char* const slash = std::strrchr(path_, '/');
    if (std::strcmp(slash == nullptr ? path_ : slash + 1, name) == 0 ||
        std::strcmp(path_, name) == 0) {
      return true;
    }
    bool is_named = false;
    VisitNames(DT_SONAME, [&](const char* own) { is_named |= std::strcmp(own, name) == 0; });
    return is_named;
  }

  // Calls `visit` with the name of each binary that this one needs.
  void VisitNeeded(auto visit) const { VisitNames(DT_NEEDED, visit); }

  // The address of the function `name` that this binary defines, or NULL.
  void* Find(const char* name) const {
    if (symbols_ == nullptr || strings_ == nullptr) return nullptr;
    return gnu_hash_ != nullptr ? FindByGnuHash(name)
           : hash_ != nullptr   ? FindByHash(name)
                                : nullptr;
  }

 private:
  // The loader has relocated the addresses in the dynamic section, or not.
  template <class T>
  const T* Pointer(const ElfW(Dyn) & entry) const {
    const std::uintptr_t address = entry.d_un.d_ptr;
    return At<const T>(Contains(address) ? address : base_ + address);
  }

  void VisitNames(ElfW(Sxword) tag, auto visit) const {
    for (const auto* entry = dynamic_; entry != nullptr && entry->d_tag != DT_NULL; ++entry) {
      if (entry->d_tag == tag) visit(strings_ + entry->d_un.d_val);
    }
  }

  void* FindByGnuHash(const char* name) const {
    std::uint32_t hash = 5381;
    for (const char* byte = name; *byte != '\0'; ++byte) {
      hash = hash * 33 + static_cast<unsigned char>(*byte);
    }
    const std::uint32_t bucket_count = gnu_hash_[0], first = gnu_hash_[1],
                        bloom_size = gnu_hash_[2];
    const std::uint32_t* const buckets =
        gnu_hash_ + 4 + sizeof(ElfW(Addr)) / sizeof(std::uint32_t) * bloom_size;
    const std::uint32_t* const hashes = buckets + bucket_count;
    if (bucket_count == 0 || buckets[hash % bucket_count] < first) return nullptr;
    // The lowest bit marks the last symbol of a bucket.
    for (std::uint32_t i = buckets[hash % bucket_count];; ++i) {
      if ((hashes[i - first] | 1) == (hash | 1) && IsDefinition(symbols_[i], name))
        return Address(i);
      if ((hashes[i - first] & 1) != 0) return nullptr;
    }
  }

  void* FindByHash(const char* name) const {
    std::uint32_t hash = 0;
    for (const char* byte = name; *byte != '\0'; ++byte) {
      hash = (hash << 4) + static_cast<unsigned char>(*byte);
      hash = (hash ^ (hash >> 24 & 0xF0)) & 0x0FFFFFFF;
    }
    const std::uint32_t bucket_count = hash_[0];
    const std::uint32_t* const buckets = hash_ + 2;
    const std::uint32_t* const chains = buckets + bucket_count;
    if (bucket_count == 0) return nullptr;
    for (std::uint32_t i = buckets[hash % bucket_count]; i != 0; i = chains[i]) {
      if (IsDefinition(symbols_[i], name)) return Address(i);
    }
    return nullptr;
  }

  bool IsDefinition(const ElfW(Sym) & symbol, const char* name) const {
    return symbol.st_shndx != SHN_UNDEF && ELF64_ST_TYPE(symbol.st_info) == STT_FUNC &&
           std::strcmp(strings_ + symbol.st_name, name) == 0;
  }

  void* Address(std::uint32_t i) const { return At<void>(base_ + symbols_[i].st_value); }

  const char* path_;
  std::uintptr_t base_, begin_ = std::numeric_limits<std::uintptr_t>::max(), end_ = 0;
  const ElfW(Dyn) * dynamic_ = nullptr;
  const char* strings_ = nullptr;
  const ElfW(Sym) * symbols_ = nullptr;
  const std::uint32_t* gnu_hash_ = nullptr;
  const std::uint32_t* hash_ = nullptr;
};

std::atomic<int> searches = 0;
std::atomic<bool> is_forking = false;

// Exists while this thread searches. The loader then holds a lock. So signals are blocked, as a
// handler could jump out, and no thread forks, as nothing would release the lock in the child. A
// thread waits for others only for a short time: they may wait for it in turn.
class LoaderSearch {
 public:
  LoaderSearch() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &mask_);
    Wait([] { return !is_forking; });
    ++searches;
  }
  LoaderSearch(const LoaderSearch&) = delete;
  LoaderSearch& operator=(const LoaderSearch&) = delete;
  ~LoaderSearch() {
    --searches;
    pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  }

  static void BeginFork() {
    is_forking = true;
    Wait([] { return searches == 0; });
  }
  static void EndForkInParent() { is_forking = false; }
  static void EndForkInChild() {
    searches = 0;
    is_forking = false;
  }

 private:
  static void Wait(auto is_done) {
    for (int i = 0; i < 10000 && !is_done(); ++i) sched_yield();
  }
  sigset_t mask_;
};
[[maybe_unused]] const int forks_between_searches = pthread_atfork(
    LoaderSearch::BeginFork, LoaderSearch::EndForkInParent, LoaderSearch::EndForkInChild);

// Calls `visit` with each binary and its position, in the order of loading, until it returns true.
// Meanwhile no binary is unloaded. The loader holds a lock.
template <class Visit>
void VisitBinaries(Visit visit) {
  struct State {
    Visit* visit;
    std::size_t position;
  } start = {&visit, 0};
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        auto& state = *static_cast<State*>(data);
        return (*state.visit)(Binary(*info), state.position++) ? 1 : 0;
      },
      &start);
}

// A number that is different after a binary is loaded or unloaded. 0 if the C library has none.
std::uint64_t Generation() {
  std::uint64_t generation = 0;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t size, void* data) {
        if (size < offsetof(dl_phdr_info, dlpi_subs) + sizeof info->dlpi_subs) return 1;
        *static_cast<std::uint64_t*>(data) = info->dlpi_adds + info->dlpi_subs;
        return 1;
      },
      &generation);
  return generation;
}

// Whether a binary is in a set, by its position.
using Binaries = std::bitset<2048>;
bool IsIn(const Binaries& binaries, std::size_t position) {
  return position < binaries.size() && binaries[position];
}

Binaries NeededBy(const Binaries& binaries) {
  Binaries needed;
  VisitBinaries([&](const Binary& binary, std::size_t position) {
    if (!IsIn(binaries, position)) return false;
    binary.VisitNeeded([&](const char* name) {
      VisitBinaries([&](const Binary& other, std::size_t at) {
        const bool is_it = other.IsNamed(name);
        if (is_it && at < needed.size()) needed.set(at);
        return is_it;
      });
    });
    return false;
  });
  return needed;
}

// Calls `visit` with the binary at `position`, then with those that it needs, then with those that
// these need, until it returns true. Returns all of them.
template <class Visit>
Binaries VisitWithNeeded(std::size_t position, Visit visit) {
  Binaries all, level;
  if (position < level.size()) level.set(position);
  while (level.any() && !visit(level)) {
    all |= level;
    level = NeededBy(level) & ~all;
  }
  return all;
}
Binaries WithNeeded(std::size_t position) {
  return VisitWithNeeded(position, [](const Binaries&) { return false; });
}

// The number of binaries that the loader loaded before it ran an initialiser. They come first and
// are never unloaded.
std::size_t CountBinariesAtStart() {
  std::size_t count = 0, own = 0;
  VisitBinaries([&](const Binary& binary, std::size_t position) {
    if (binary.Contains(reinterpret_cast<std::uintptr_t>(&CountBinariesAtStart))) own = position;
    count = position + 1;
    return false;
  });
#ifndef __BIONIC__
  // An initialiser that ran earlier may have loaded more. On bionic, this one runs first.
  const Binaries needed = WithNeeded(0) | WithNeeded(own);
  while (count > own + 1 && !IsIn(needed, count - 1)) --count;
#endif
  return count;
}
// 0 before this binary is initialised.
const std::size_t loaded_at_start = CountBinariesAtStart();

#ifdef __BIONIC__
// bionic searches the binary's own libraries first.
constexpr bool kSearchesProgramFirst = false;
#else
constexpr bool kSearchesProgramFirst = true;
#endif

// This binary, or a trace library that records what this binary gives it.
bool IsSkipped(const Binary& binary) {
  return binary.Contains(reinterpret_cast<std::uintptr_t>(&CountBinariesAtStart)) ||
         (RecordInTrace != nullptr &&
          binary.Contains(reinterpret_cast<std::uintptr_t>(RecordInTrace)));
}

constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

struct Definition {
  void* address = nullptr;
  std::size_t position = kNowhere;

  Definition() = default;

  // The first definition in the binaries that `is_searched` is true for.
  Definition(const char* symbol, auto is_searched) {
    VisitBinaries([&](const Binary& binary, std::size_t at) {
      if (!is_searched(at) || IsSkipped(binary)) return false;
      address = binary.Find(symbol);
      if (address != nullptr) position = at;
      return address != nullptr;
    });
  }
};

// The binary that was loaded first of those that need the one at `position`. The loader searches it
// and what it needs.
std::size_t RootOf(std::size_t position) {
  for (std::size_t root = loaded_at_start; root < position && position != kNowhere; ++root) {
    if (IsIn(WithNeeded(root), position)) return root;
  }
  return position;
}

Definition FindDefinition(const char* symbol, std::size_t caller) {
  if (kSearchesProgramFirst) {
    const Definition found(
        symbol, [](std::size_t at) { return at < loaded_at_start || loaded_at_start == 0; });
    if (found.address != nullptr) return found;
  }
  Definition found;
  VisitWithNeeded(RootOf(caller), [&](const Binaries& level) {
    found = Definition(symbol, [&](std::size_t at) { return IsIn(level, at); });
    return found.address != nullptr;
  });
  if (found.address != nullptr) return found;
  // What is loaded globally later.
  return Definition(symbol, [](std::size_t) { return true; });
}

}  // namespace

Resolution Resolutions::Search(const char* symbol, std::uintptr_t caller) {
  const char* const lookup = Symbol<android::getCustIntFeature>::Name();
  if (symbol == nullptr || lookup == nullptr) return {};
  const LoaderSearch search;
  const std::uint64_t generation = Generation();
  // If another thread uses it, this one searches without it.
  const bool may_use_recent = !is_recent_in_use_.test_and_set();
  if (may_use_recent && generation != 0 && recent_.generation == generation &&
      recent_.binary.Contains(caller)) {
    const Resolution resolution = recent_.resolution;
    is_recent_in_use_.clear();
    return resolution;
  }
  Resolution resolution;
  Range range;
  std::size_t position = kNowhere;
  Definition definition;
  // Inside of a visit, so that no binary is unloaded before the search ends.
  VisitBinaries([&](const Binary&, std::size_t) {
    VisitBinaries([&](const Binary& binary, std::size_t at) {
      if (!binary.Contains(caller)) return false;
      position = at;
      range = {binary.begin(), binary.size()};
      if (!IsSkipped(binary) && binary.Find(lookup) != nullptr)
        resolution.caller = Caller::kLibrary;
      return true;
    });
    definition = FindDefinition(symbol, position);
    return true;
  });
  resolution.next = definition.address;
  if (resolution.caller == Caller::kOther && position == definition.position) {
    resolution.caller = Caller::kDefinition;
  }
  if (position < loaded_at_start && definition.position < loaded_at_start) {
    const std::size_t i = permanent_size_++;
    if (i < std::size(permanent_)) {
      permanent_[i].binary = range;
      permanent_[i].resolution = resolution;
      permanent_[i].is_complete.store(true, std::memory_order_release);
    }
  }
  if (may_use_recent) {
    recent_ = {range, resolution, generation};
    is_recent_in_use_.clear();
  }
  return resolution;
}

void AppendBinaryPath(TextBuffer& text, const void* address) {
  const LoaderSearch search;
  VisitBinaries([&](const Binary& binary, std::size_t) {
    const bool is_it = binary.Contains(reinterpret_cast<std::uintptr_t>(address));
    if (is_it) text += std::string_view(binary.path());
    return is_it;
  });
}

}  // namespace cadrova::tools
