// The functions of the test kit, except `ClearProperties`.

#include <android-base/properties.h>

#include <ranges>
#include <set>
#include <tuple>
#include <utility>
#include <variant>

#include "cadrova/host.h"
#include "core_state.h"

namespace cadrova::host {
namespace {

// Sorts `list` by `id`. Of several elements with the same id, only the first remains.
void SortUnique(auto& list, auto id) {
  const auto is_before = [&](const auto& one, const auto& other) { return id(one) < id(other); };
  std::set<std::ranges::range_value_t<decltype(list)>, decltype(is_before)> sorted(is_before);
  for (auto& element : list) sorted.insert(std::move(element));
  list.assign(sorted.begin(), sorted.end());
}

}  // namespace

// Everything else in this library is hidden.
#pragma GCC visibility push(default)

std::vector<Error> LoadFile(const std::string& path) {
  return CoreState::Instance().LoadFile(path);
}

std::vector<Error> LoadText(const std::string& toml) {
  return CoreState::Instance().LoadText(toml);
}

void Set(const std::string& map, const std::string& key, Value value) {
  std::visit([&](auto& content) { CoreState::Instance().SetItem(map, key, std::move(content)); },
             value);
}

Contents List() {
  CoreState& state = CoreState::Instance();
  const CoreState::File& file = state.GetFile();
  Contents contents;
  contents.file = file.name;
  // SIM data that was set comes first, so it is listed instead of items of the file.
  state.AppendSimTo(contents);
  file.store.AppendTo(contents);
  for (const Contents::Item& item : contents.items) {
    if (item.place == Place{}) contents.maps.push_back({item.map, {}});
  }
  SortUnique(contents.maps, [](const auto& map) { return std::tie(map.name); });
  SortUnique(contents.items, [](const auto& item) { return std::tie(item.map, item.key); });
  return contents;
}

void SetDevice(const std::string& region, const std::string& carrier) {
  android::base::SetProperty("ro.orvel.region", region);
  android::base::SetProperty("persist.sys.cota.carrier", carrier);
}

void ClearSim() { CoreState::Instance().ClearSim(); }

void Reset() {
  CoreState::Instance().Unload();
  ClearSim();
  ClearProperties();
}

#pragma GCC visibility pop

}  // namespace cadrova::host
