#include "core_state.h"

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <tuple>

#include "file.h"
#include "toml_reader.h"

namespace cadrova::host {
namespace {

// The path of the sample, which is relative to this library in the build tree and when installed.
std::string SamplePath() {
  Dl_info library;
  dladdr(reinterpret_cast<const void*>(&SamplePath), &library);
  const auto path = std::filesystem::absolute(library.dli_fname).parent_path() / CADROVA_SAMPLE;
  return path.lexically_normal().string();
}

std::string DefaultPath() {
  const char* path = std::getenv("CADROVA_HOST_DATA");
  return path != nullptr && *path != '\0' ? path : SamplePath();
}

// At load, for the reasons that the fake property store has.
[[gnu::constructor]] void MakeCoreState() { CoreState::Instance(); }

}  // namespace

// Forks take the lock, so that a child does not inherit it from a thread that it does not have.
CoreState::CoreState() {
  pthread_atfork([] { Instance().mutex_.lock(); }, [] { Instance().mutex_.unlock(); },
                 [] { Instance().mutex_.unlock(); });
}

std::vector<Error> CoreState::Load(ParsedFile file) {
  if (file.errors.empty()) Use(std::move(file.data));
  return std::move(file.errors);
}

void CoreState::SetItem(const std::string& map, const std::string& key, StoredValue value) {
  GetFile();
  owned_->store.AddMap(map);
  owned_->store.Set(map, key, std::move(value));
}

MapPlaces CoreState::ListMaps() {
  MapPlaces maps = GetFile().store.Maps();
  const std::lock_guard lock(mutex_);
  maps.insert(sim_.Maps().begin(), sim_.Maps().end());
  return maps;
}

std::vector<Contents::Item> CoreState::ListItems() {
  const LoadedFile& file = GetFile();
  std::vector<Contents::Item> items;
  {
    const std::lock_guard lock(mutex_);
    sim_.AppendItems(items);
  }
  std::set<std::pair<std::string, std::string>> replaced;
  for (const Contents::Item& item : items) replaced.emplace(item.map, item.key);
  const auto sim_items = static_cast<std::ptrdiff_t>(items.size());
  file.store.AppendItems(items);
  if (!replaced.empty()) {
    const auto is_replaced = [&](const Contents::Item& item) {
      return replaced.contains({item.map, item.key});
    };
    items.erase(std::remove_if(items.begin() + sim_items, items.end(), is_replaced), items.end());
  }
  std::ranges::sort(items, {},
                    [](const Contents::Item& item) { return std::tie(item.map, item.key); });
  return items;
}

const LoadedFile& CoreState::LoadDefault() {
  const std::lock_guard lock(mutex_);
  if (owned_ == nullptr) {
    const std::vector<Error> errors = Load(ParseFile(DefaultPath()));
    if (!errors.empty()) {
      Error error = FirstOf(errors);
      if (error.place.line == 0) error.reason += "; name another file with CADROVA_HOST_DATA";
      ExitWith(error);
    }
  }
  return *owned_;
}

void CoreState::Use(std::shared_ptr<LoadedFile> file) {
  file_.store(file.get(), std::memory_order_release);
  owned_ = std::move(file);
}

}  // namespace cadrova::host
