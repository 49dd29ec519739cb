// The data that the fake core reads.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "for_command.h"
#include "store.h"

namespace cadrova::host {

// The data of a customization file, and SIM data, which takes precedence. The data of the file
// changes only while no lookup runs, so lookups read it without a lock.
class CoreState {
 public:
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
  const LoadedFile& GetFile() {
    const LoadedFile* file = file_.load(std::memory_order_acquire);
    return file != nullptr ? *file : LoadDefault();
  }

  // Returns the errors of `file`. If there are any, the data does not change.
  std::vector<Error> Load(ParsedFile file);
  // The data of `file` from now on. If it is NULL, the next call that needs data loads the default
  // file.
  void Use(std::shared_ptr<LoadedFile> file);
  void SetItem(const std::string& map, const std::string& key, StoredValue value);

  void SetSimItem(const std::string& map, const std::string& key, StoredValue value) {
    const std::lock_guard lock(mutex_);
    sim_.AddMap(map);
    sim_.Set(map, key, std::move(value));
  }
  void ClearSim() {
    const std::lock_guard lock(mutex_);
    sim_ = Store();
  }
  MapPlaces ListMaps();
  // Sorted by map and key.
  std::vector<Contents::Item> ListItems();

 private:
  CoreState();
  const LoadedFile& LoadDefault();

  // Guards `sim_`, and `LoadDefault` against itself. Not a shared_mutex: with libstdc++, a child of
  // `fork` can't unlock one that its parent has locked.
  std::mutex mutex_;
  Store sim_;
  std::shared_ptr<LoadedFile> owned_;
  std::atomic<const LoadedFile*> file_ = nullptr;  // The same pointer as `owned_`, for lookups.
};

}  // namespace cadrova::host
