// The data that the fake core reads.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store.h"

namespace cadrova::host {

// The data of a customization file, and SIM data, which takes precedence. The data of the file
// changes only while no lookup runs, so lookups read it without a lock.
class CoreState {
 public:
  struct File {
    std::string name;
    Store store;
  };

  // Never destroyed: threads may still make lookups while the process exits.
  static CoreState& Instance() {
    static CoreState& state = *new CoreState;
    return state;
  }

  static bool IsSim(std::string_view map) { return map.starts_with("SIM_"); }

  // Calls `visitor` with a pointer to the value under `key` in `map`, or with NULL if there is no
  // value of type `Type`. The pointer is valid only during the call. Returns what `visitor`
  // returns.
  template <class Type>
  auto Visit(const std::string& map, const std::string& key, auto visitor) {
    if (IsSim(map)) {
      const std::lock_guard lock(mutex_);
      if (const Store::Item* item = sim_.Find(map, key)) return visitor(As<Type>(item->value));
    }
    const Store::Item* item = GetFile().store.Find(map, key);
    return visitor(item == nullptr ? nullptr : As<Type>(item->value));
  }

  // The loaded file. If there is none, loads the default file first.
  const File& GetFile() {
    const File* file = file_.load(std::memory_order_acquire);
    return file != nullptr ? *file : LoadDefault();
  }

  // Both return the errors in the document. If there are any, the data does not change.
  std::vector<Error> LoadFile(const std::string& path);
  std::vector<Error> LoadText(const std::string& toml);
  void SetItem(const std::string& map, const std::string& key, StoredValue value);
  void Unload() { Use(nullptr); }

  void SetSimItem(const std::string& map, const std::string& key, StoredValue value) {
    const std::lock_guard lock(mutex_);
    sim_.Set(map, key, std::move(value));
  }
  void ClearSim() {
    const std::lock_guard lock(mutex_);
    sim_ = Store();
  }
  void AppendSimTo(Contents& contents) {
    const std::lock_guard lock(mutex_);
    sim_.AppendTo(contents);
  }

 private:
  CoreState();
  const File& LoadDefault();
  void Use(std::unique_ptr<File> file);

  // Guards `sim_`, and `LoadDefault` against itself. Not a shared_mutex: with libstdc++, a child of
  // `fork` can't unlock one that its parent has locked.
  std::mutex mutex_;
  Store sim_;
  std::unique_ptr<File> owned_;
  std::atomic<const File*> file_ = nullptr;  // The same pointer as `owned_`, for lookups.
};

}  // namespace cadrova::host
