// Passes arbitrary blocks of all four layouts through the typed bridge. Compares the values and
// their order with a simple model. Checks that each block is released exactly once and in order,
// and that the strings of pairs are never released. Each block is as short as its layout allows, so
// the address sanitizer reports a read past its end.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cadrova/cadrova.h"
#include "parser_core.h"

namespace {

void* next_block = nullptr;

// The core's blocks. The value is true until the block is released.
std::map<void*, bool> live;
// The blocks that the library released, in order.
std::vector<void*> released;

void Require(bool condition) {
  if (!condition) std::abort();
}

template <class Element>
Element* Block(std::size_t count) {
  void* const block = std::malloc(count * sizeof(Element));
  live[block] = true;
  return static_cast<Element*>(block);
}

char* StringBlock(const std::string& bytes) {
  char* const block = Block<char>(bytes.size() + 1);
  std::memcpy(block, bytes.c_str(), bytes.size() + 1);
  return block;
}

std::string BeforeNul(const std::string& bytes) { return bytes.substr(0, bytes.find('\0')); }

void FuzzString(FuzzedDataProvider& data) {
  const std::string bytes = data.ConsumeRandomLengthString(200);
  next_block = StringBlock(bytes);
  const std::vector<void*> expected = {next_block};
  Require(android::getStringFromRust("m", "k", "d") == BeforeNul(bytes));
  Require(released == expected);
}

void FuzzStringArray(FuzzedDataProvider& data) {
  std::vector<std::string> model;
  std::vector<void*> expected;
  const auto count = data.ConsumeIntegralInRange<std::size_t>(0, 40);
  char** const block = Block<char*>(count + 1);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string bytes = data.ConsumeRandomLengthString(60);
    model.push_back(BeforeNul(bytes));
    block[i] = StringBlock(bytes);
    expected.push_back(block[i]);
  }
  block[count] = nullptr;
  expected.push_back(block);
  next_block = block;
  Require(android::getStringArrayFromRust("m", "k") == model);
  Require(released == expected);
}

void FuzzIntArray(FuzzedDataProvider& data) {
  std::vector<int> model;
  const auto size = data.ConsumeIntegralInRange<std::int32_t>(0, 300);
  const bool is_empty = data.ConsumeBool();
  auto* const block = Block<std::int32_t>(1 + static_cast<std::size_t>(size));
  block[0] = is_empty ? -data.ConsumeIntegralInRange<std::int32_t>(0, 0x7FFFFFFF) : size;
  for (std::int32_t i = 1; i <= size; ++i) {
    block[i] = data.ConsumeIntegral<std::int32_t>();
    if (!is_empty) model.push_back(block[i]);
  }
  next_block = block;
  const std::vector<void*> expected = {block};
  Require(android::getIntArrayFromRust("m", "k") == model);
  Require(released == expected);
}

void FuzzPairArray(FuzzedDataProvider& data) {
  std::vector<std::pair<std::string, std::string>> model;
  std::vector<char*> slots;
  std::vector<char*> strings;
  const auto add = [&] {
    const std::string bytes = data.ConsumeRandomLengthString(60);
    strings.push_back(StringBlock(bytes));
    slots.push_back(strings.back());
    return BeforeNul(bytes);
  };
  for (auto count = data.ConsumeIntegralInRange(0, 20); count > 0; --count) {
    std::string key = add();
    std::string value = add();
    model.emplace_back(std::move(key), std::move(value));
  }
  if (data.ConsumeBool()) add();  // a key whose value is NULL
  slots.push_back(nullptr);
  char** const block = Block<char*>(slots.size());
  std::memcpy(block, slots.data(), slots.size() * sizeof(char*));
  next_block = block;
  const std::vector<void*> expected = {block};
  Require(android::getMapFromRust("m", "k") == model);
  Require(released == expected);
  for (char* string : strings) {
    Require(live[string]);
    std::free(string);
  }
}

}  // namespace

extern "C" {

void __real_free(void* block);

void __wrap_free(void* block) {
  const auto found = live.find(block);
  if (found != live.end()) {
    Require(found->second);
    found->second = false;
    released.push_back(block);
  }
  __real_free(block);
}

// The core. The functions for numbers are linked but not fuzzed.
cadrova_core_bool get_bool_from_map(const std::string&, const std::string&,
                                    cadrova_core_bool default_value) {
  return default_value;
}
std::int32_t get_int_from_map(const std::string&, const std::string&, std::int32_t default_value) {
  return default_value;
}
float get_float_from_map(const std::string&, const std::string&, float default_value) {
  return default_value;
}
char* get_str_from_map(const std::string&, const std::string&, const std::string&) {
  return static_cast<char*>(next_block);
}
char** get_str_arr_from_map(const std::string&, const std::string&) {
  return static_cast<char**>(next_block);
}
std::int32_t* get_int_arr_from_map(const std::string&, const std::string&) {
  return static_cast<std::int32_t*>(next_block);
}
char** get_map_arr_from_map(const std::string&, const std::string&) {
  return static_cast<char**>(next_block);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  live.clear();
  released.clear();
  switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
      FuzzString(data);
      break;
    case 1:
      FuzzStringArray(data);
      break;
    case 2:
      FuzzIntArray(data);
      break;
    default:
      FuzzPairArray(data);
      break;
  }
  return 0;
}

}  // extern "C"
