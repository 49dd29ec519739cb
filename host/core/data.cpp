#include "data.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <tuple>
#include <variant>

#include "cadrova/host.h"
#include "file.h"

namespace cadrova::host {
namespace {

std::variant<Customization, Mistake> Read(const std::string& path) {
  auto contents = ReadFile(path);
  if (auto* mistake = std::get_if<Mistake>(&contents)) return std::move(*mistake);
  return Customization::Parse(std::get<std::string>(contents), path);
}

// Where the sample lies, as seen from this library, in the build tree as where it is installed.
std::string InstalledSample() {
  Dl_info library;
  dladdr(reinterpret_cast<const void*>(&InstalledSample), &library);
  const auto path = std::filesystem::absolute(library.dli_fname).parent_path() / CADROVA_SAMPLE;
  return path.lexically_normal().string();
}

std::string DataPath() {
  const char* path = std::getenv("CADROVA_HOST_DATA");
  return path != nullptr && *path != '\0' ? path : InstalledSample();
}

std::optional<Mistake> Answer(std::variant<Customization, Mistake> outcome) {
  if (auto* mistake = std::get_if<Mistake>(&outcome)) return std::move(*mistake);
  Data::The().Use(
      std::make_unique<const Customization>(std::move(std::get<Customization>(outcome))));
  return std::nullopt;
}

// Sorts `list` by `name`, and leaves one of each.
void KeepFirst(auto& list, auto name) {
  std::ranges::stable_sort(list, {}, name);
  const auto rest = std::ranges::unique(list, {}, name);
  list.erase(rest.begin(), rest.end());
}

}  // namespace

const Customization& Data::Loaded() {
  const std::unique_lock lock(mutex_);
  if (owned_ == nullptr) {
    auto outcome = Read(DataPath());
    if (auto* mistake = std::get_if<Mistake>(&outcome)) {
      if (mistake->line == 0) mistake->reason += "; name another with CADROVA_HOST_DATA";
      Stop(*mistake);
    }
    Use(std::make_unique<const Customization>(std::move(std::get<Customization>(outcome))));
  }
  return *owned_;
}

// There where the property store is the stand-in one.
[[gnu::weak]] void ForgetProperties();

#pragma GCC visibility push(default)

std::optional<Mistake> AnswerFromFile(const std::string& path) { return Answer(Read(path)); }

std::optional<Mistake> AnswerFromText(const std::string& toml) {
  return Answer(Customization::Parse(toml, "<text>"));
}

Inventory TakeInventory() {
  const Customization& file = Data::The().File();
  Inventory inventory;
  inventory.file = file.file();
  // Of two with one name the first stays: an item that was handed over, a map of the file.
  Data::The().ListHandedOver(inventory);
  file.List(inventory);
  for (const Inventory::Item& item : inventory.items) {
    if (item.place.line == 0) inventory.maps.push_back({item.map, {}});
  }
  KeepFirst(inventory.maps, &Inventory::Map::name);
  KeepFirst(inventory.items, [](const auto& item) { return std::tie(item.map, item.key); });
  return inventory;
}

void ForgetSim() { Data::The().ForgetSim(); }

void StartOver() {
  Data::The().Use(nullptr);
  ForgetSim();
  if (ForgetProperties != nullptr) ForgetProperties();
}

#pragma GCC visibility pop

}  // namespace cadrova::host
