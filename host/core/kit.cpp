// The functions of the test kit, except `ClearProperties`, and those for the command.

#include <android-base/properties.h>

#include <utility>
#include <variant>

#include "cadrova/host.h"
#include "core_state.h"
#include "for_command.h"
#include "toml_reader.h"

namespace cadrova::host {

// Everything else in this library is hidden.
#pragma GCC visibility push(default)

std::vector<Error> LoadFile(const std::string& path) {
  return CoreState::Instance().Load(ParseFile(path));
}

std::vector<Error> LoadText(const std::string& toml) {
  return CoreState::Instance().Load(ParseData(toml, "<text>"));
}

void Set(const std::string& map, const std::string& key, Value value) {
  std::visit([&](auto& content) { CoreState::Instance().SetItem(map, key, std::move(content)); },
             value);
}

Contents List() {
  CoreState& state = CoreState::Instance();
  Contents contents = {state.GetFile().name, {}, state.ListItems()};
  for (const auto& [name, place] : state.ListMaps()) contents.maps.push_back({name, place});
  return contents;
}

void SetDevice(const std::string& region, const std::string& carrier) {
  android::base::SetProperty("ro.orvel.region", region);
  android::base::SetProperty("persist.sys.cota.carrier", carrier);
}

void ClearSim() { CoreState::Instance().ClearSim(); }

void Reset() {
  CoreState::Instance().Use(nullptr);
  ClearSim();
  ClearProperties();
}

void UseData(std::shared_ptr<LoadedFile> data) { CoreState::Instance().Use(std::move(data)); }

std::vector<std::string> ListMapNames() {
  std::vector<std::string> names;
  for (const auto& [name, place] : CoreState::Instance().ListMaps()) names.push_back(name);
  return names;
}

#pragma GCC visibility pop

}  // namespace cadrova::host
