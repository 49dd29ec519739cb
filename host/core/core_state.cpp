#include "core_state.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstdlib>
#include <filesystem>

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

std::map<std::string, Place> CoreState::ListMaps() {
  std::map<std::string, Place> maps = GetFile().store.Maps();
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
  file.store.AppendItems(items);
  return items;
}

const LoadedFile& CoreState::LoadDefault() {
  const std::lock_guard lock(mutex_);
  if (owned_ == nullptr) {
    std::vector<Error> errors = Load(ParseFile(DefaultPath()));
    if (!errors.empty()) {
      Error& first = errors.front();
      if (first.place.line == 0) first.reason += "; name another file with CADROVA_HOST_DATA";
      ExitWith(first);
    }
  }
  return *owned_;
}

void CoreState::Use(std::shared_ptr<LoadedFile> file) {
  file_.store(file.get(), std::memory_order_release);
  owned_ = std::move(file);
}

}  // namespace cadrova::host
