// What the stand-in core answers from.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <utility>

#include "customization.h"

namespace cadrova::host {

// A customization file, which never changes once it is read and so is asked without a lock, and in
// front of it what was handed over for the SIM.
class Data {
 public:
  // Never destroyed: threads may still ask while the process exits.
  static Data& The() {
    static Data& data = *new Data;
    return data;
  }

  static bool IsSim(std::string_view map) { return map.starts_with("SIM_"); }

  // What `use` makes of the item under `key` in `map` as a `Value`, or of NULL.
  template <class Value>
  auto With(const std::string& map, const std::string& key, auto use) {
    if (IsSim(map)) {
      const std::shared_lock lock(mutex_);
      if (const Item* item = handed_over_.Find(map, key)) return use(As<Value>(*item));
    }
    const Item* item = File().Find(map, key);
    return use(item == nullptr ? nullptr : As<Value>(*item));
  }

  const Customization& File() {
    const Customization* file = file_.load(std::memory_order_acquire);
    return file != nullptr ? *file : Loaded();
  }

  void ListHandedOver(Inventory& inventory) {
    const std::shared_lock lock(mutex_);
    handed_over_.List(inventory);
  }

  void HandOver(const std::string& map, const std::string& key, Item item) {
    const std::unique_lock lock(mutex_);
    handed_over_.Set(map, key, std::move(item));
  }

  void ForgetSim() {
    const std::unique_lock lock(mutex_);
    handed_over_ = Customization();
  }

  // Answers from `file` from now on, or where it is NULL from the one that is found when asked
  // next. Not while anybody asks.
  void Use(std::unique_ptr<const Customization> file) {
    file_.store(file.get(), std::memory_order_release);
    owned_ = std::move(file);
  }

 private:
  Data() = default;
  const Customization& Loaded();

  std::shared_mutex mutex_;
  Customization handed_over_;
  std::unique_ptr<const Customization> owned_;
  std::atomic<const Customization*> file_ = nullptr;
};

}  // namespace cadrova::host
