// The functions of the parser core, as the fake core implements them.

#include "parser_core.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core_state.h"
#include "existence_tests.h"
#include "file.h"
#include "toml_reader.h"

namespace cadrova::host {
namespace {

template <class Type>
Type Get(const std::string& map, const std::string& key, Type default_value) {
  return CoreState::Instance().Visit<Type>(
      map, key, [&](const Type* value) { return value != nullptr ? *value : default_value; });
}

template <class Type>
bool Exists(const std::string& map, const std::string& key) {
  return CoreState::Instance().Visit<Type>(map, key,
                                           [](const Type* value) { return value != nullptr; });
}

// A block of `count` elements for the caller to `free`.
template <class Element>
Element* Block(std::size_t count) {
  void* block = std::malloc(count * sizeof(Element));
  if (block == nullptr) ExitWith(Error{"libcadrova_ffi.so", {}, "out of memory", {}});
  return static_cast<Element*>(block);
}

char* StringBlock(const std::string& value) {
  return std::strcpy(Block<char>(value.size() + 1), value.c_str());
}

// Each string is a separate allocation, because the caller frees them one by one.
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

// The caller frees only this one allocation. It contains the pointers and then the strings, so the
// strings stay valid when the data changes.
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

// Everything else in this library is hidden.
#pragma GCC visibility push(default)

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value) {
  return Get<bool>(map, key, cadrova::core::IsTrue(default_value));
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
  return CoreState::Instance().Visit<std::string>(map, key, [&](const std::string* value) {
    return StringBlock(value != nullptr ? *value : default_value);
  });
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  return CoreState::Instance().Visit<StringArray>(map, key, StringArrayBlock);
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  return CoreState::Instance().Visit<IntArray>(map, key, IntArrayBlock);
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  return CoreState::Instance().Visit<MapArray>(map, key, PairArrayBlock);
}

#define EXISTENCE_TEST(name, Type)                                         \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return Exists<Type>(map, key);                                         \
  }
// The SIM tests find items only in SIM maps.
#define SIM_EXISTENCE_TEST(name, Type)                                     \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return CoreState::IsSim(map) && Exists<Type>(map, key);                \
  }
CADROVA_EXISTENCE_TESTS(EXISTENCE_TEST, SIM_EXISTENCE_TEST)

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  const std::string map = name == "SIM_DEFAULT" ? name : "SIM_" + name;
  CoreState::Instance().SetSimItem(map, first, SimValueFromText(second));
}

#pragma GCC visibility pop
