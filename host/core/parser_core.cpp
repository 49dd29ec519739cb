// The parser core's interface over a customization file.

#include "bridge/parser_core.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string_view>

#include "customization.h"
#include "host_core.h"

namespace cadrova::host {
namespace {

// It never answers from half a file.
[[noreturn]] void Stop(const std::string& message) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", message.c_str());
  std::_Exit(2);
}

Customization Load(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path)) {
    Stop(path + ": can't read this customization file; name another with CADROVA_HOST_DATA");
  }
  const std::string toml((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  auto outcome = Customization::Parse(toml);
  if (const auto* mistake = std::get_if<Mistake>(&outcome)) {
    Stop(path + ':' + std::to_string(mistake->line) + ':' + std::to_string(mistake->column) + ": " +
         mistake->what);
  }
  return std::move(std::get<Customization>(outcome));
}

// lib/libcadrova_ffi.so answers from share/cadrova/sample.toml, in the build tree as where it is
// installed.
std::string InstalledSample() {
  Dl_info library;
  dladdr(reinterpret_cast<const void*>(&cadrova_host_use_data), &library);
  const auto path = std::filesystem::absolute(library.dli_fname).parent_path();
  return (path.parent_path() / "share" / "cadrova" / "sample.toml").string();
}

std::string DataPath() {
  const char* path = std::getenv("CADROVA_HOST_DATA");
  return path != nullptr && *path != '\0' ? path : InstalledSample();
}

// The file, which never changes once it is read and so needs no lock, and in front of it what was
// handed over for the SIM. Never destroyed: threads may still ask while the process exits.
class Data {
 public:
  static Data& The(const char* path = nullptr) {
    static Data& data = *new Data(path != nullptr ? path : DataPath());
    return data;
  }

  // What `use` makes of the item under `key` in `map` as a `Value`, or of NULL.
  template <class Value>
  auto With(const std::string& map, const std::string& key, auto use) {
    if (IsSim(map)) {
      const std::shared_lock lock(mutex_);
      if (const Item* item = handed_over_.Find(map, key)) return use(As<Value>(*item));
    }
    const Item* item = Customization::In(map, FindInFile(key));
    return use(item == nullptr ? nullptr : As<Value>(*item));
  }

  void HandOver(const std::string& map, const std::string& key, Item item) {
    const std::unique_lock lock(mutex_);
    handed_over_.Set(map, key, std::move(item));
  }

  static bool IsSim(std::string_view map) { return map.starts_with("SIM_"); }

 private:
  explicit Data(const std::string& path) : file_(Load(path)) {}

  // A lookup asks about one key several times in a row.
  const Customization::ItemsOfKey* FindInFile(const std::string& key) const {
    [[gnu::tls_model("initial-exec")]] thread_local const Customization::ItemsOfKey* last = nullptr;
    if (last == nullptr || last->first != key) last = file_.Find(key);
    return last;
  }

  const Customization file_;
  std::shared_mutex mutex_;
  Customization handed_over_;
};

template <class Value>
Value Get(const std::string& map, const std::string& key, Value default_value) {
  return Data::The().With<Value>(
      map, key, [&](const Value* value) { return value != nullptr ? *value : default_value; });
}

template <class Value>
bool Exists(const std::string& map, const std::string& key) {
  return Data::The().With<Value>(map, key, [](const Value* value) { return value != nullptr; });
}

// SIM questions look at SIM maps only.
template <class Value>
bool ExistsForSim(const std::string& map, const std::string& key) {
  return Data::IsSim(map) && Exists<Value>(map, key);
}

// A block of `count` elements for the caller to `free`.
template <class Element>
Element* Block(std::size_t count) {
  void* block = std::malloc(count * sizeof(Element));
  if (block == nullptr) Stop("out of memory");
  return static_cast<Element*>(block);
}

char* StringBlock(const std::string& value) {
  return std::strcpy(Block<char>(value.size() + 1), value.c_str());
}

// Each string an allocation of its own, as the caller frees them one by one.
char** StringArrayBlock(const StringArray* list) {
  if (list == nullptr) return nullptr;
  char** const block = Block<char*>(list->size() + 1);
  char** slot = block;
  for (const std::string& string : *list) *slot++ = StringBlock(string);
  *slot = nullptr;
  return block;
}

std::int32_t* IntArrayBlock(const IntArray* list) {
  if (list == nullptr) return nullptr;
  std::int32_t* const block = Block<std::int32_t>(1 + list->size());
  block[0] = static_cast<std::int32_t>(list->size());
  std::ranges::copy(*list, block + 1);
  return block;
}

// The strings stand behind the pointers, in the one allocation that the caller frees, so that they
// outlive any change of the data.
char** PairArrayBlock(const MapArray* list) {
  if (list == nullptr) return nullptr;
  const std::size_t slots = 2 * list->size() + 1;
  std::size_t size = slots * sizeof(char*);
  for (const auto& [key, value] : *list) size += key.size() + 1 + value.size() + 1;
  char* const bytes = Block<char>(size);
  char** const block = reinterpret_cast<char**>(bytes);
  char** slot = block;
  char* end = bytes + slots * sizeof(char*);
  const auto append = [&](const std::string& string) {
    *slot++ = end;
    end = std::strcpy(end, string.c_str()) + string.size() + 1;
  };
  for (const auto& [key, value] : *list) {
    append(key);
    append(value);
  }
  *slot = nullptr;
  return block;
}

}  // namespace
}  // namespace cadrova::host

using namespace cadrova::host;

// Everything but the interface stays inside.
#pragma GCC visibility push(default)

void cadrova_host_use_data(const char* path) { Data::The(path); }

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value) {
  return Get<bool>(map, key, android::cadrova::IsYes(default_value));
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  return Get<std::int32_t>(map, key, default_value);
}

float get_float_from_map(const std::string& map, const std::string& key, float default_value) {
  return Get<float>(map, key, default_value);
}

char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value) {
  return Data::The().With<std::string>(map, key, [&](const std::string* value) {
    return StringBlock(value != nullptr ? *value : default_value);
  });
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  return Data::The().With<StringArray>(map, key, StringArrayBlock);
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  return Data::The().With<IntArray>(map, key, IntArrayBlock);
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  return Data::The().With<MapArray>(map, key, PairArrayBlock);
}

#define EXISTENCE_TEST(name, test) \
  cadrova_core_bool name(const std::string& map, const std::string& key) { return test(map, key); }
EXISTENCE_TEST(get_bool_item_exist, Exists<bool>)
EXISTENCE_TEST(get_int_item_exist, Exists<std::int32_t>)
EXISTENCE_TEST(get_float_item_exist, Exists<float>)
EXISTENCE_TEST(get_str_item_exist, Exists<std::string>)
EXISTENCE_TEST(get_str_arr_item_exist, Exists<StringArray>)
EXISTENCE_TEST(get_int_arr_item_exist, Exists<IntArray>)
EXISTENCE_TEST(get_map_arr_item_exist, Exists<MapArray>)
EXISTENCE_TEST(sim_get_bool_item_exist, ExistsForSim<bool>)
EXISTENCE_TEST(sim_get_int_item_exist, ExistsForSim<std::int32_t>)
EXISTENCE_TEST(sim_get_str_item_exist, ExistsForSim<std::string>)
EXISTENCE_TEST(sim_get_str_arr_item_exist, ExistsForSim<StringArray>)
EXISTENCE_TEST(sim_get_int_arr_item_exist, ExistsForSim<IntArray>)
EXISTENCE_TEST(sim_get_map_arr_item_exist, ExistsForSim<MapArray>)
#undef EXISTENCE_TEST

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  const std::string map = name == "SIM_DEFAULT" ? name : "SIM_" + name;
  Data::The().HandOver(map, first, ItemFromText(second));
}

#pragma GCC visibility pop
