#include "recording_device.h"

#include <android-base/properties.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <utility>

#include "existence_tests.h"
#include "parser_core.h"

namespace recording {

Device device;

namespace {

Log events;
std::vector<const void*> allocated;  // by the library since the recording began, in order
std::vector<const void*> lent;       // the private copies of the last call that are still there
bool watching_heap = false;

// Keeps the recorder's own heap traffic out of the recording.
struct Aside {
  const bool was_watching = std::exchange(watching_heap, false);
  ~Aside() { watching_heap = was_watching; }
};

// What is in the memory stream that takes the place of standard output, as of its last flush.
char* output = nullptr;
std::size_t output_size = 0;
std::size_t output_seen = 0;

void NoteOutput() {
  const bool was_flushed = output_size > output_seen;
  std::fflush(stdout);
  if (output_size > output_seen) {
    events.push_back("print " + std::string(output + output_seen, output_size - output_seen));
  }
  if (was_flushed) events.emplace_back("flush");
  output_seen = output_size;
}

void NoteCopiesLeft() {
  if (!std::exchange(lent, {}).empty()) events.emplace_back("copies outlive their call");
}

void Happened(const std::string& event) {
  NoteOutput();
  NoteCopiesLeft();
  events.push_back(event);
}

template <class... Number>
void Asked(const char* function, std::initializer_list<const std::string*> strings,
           Number... number) {
  Aside aside;
  std::vector<std::string> arguments;
  std::vector<const void*> copies;
  for (const std::string* string : strings) {
    arguments.push_back(*string);
    if (string->size() > std::string().capacity()) copies.push_back(string->data());
  }
  (arguments.push_back(std::to_string(number)), ...);
  Happened(Call(function, arguments));
  const auto latest = allocated.end() - std::min(std::ssize(copies), std::ssize(allocated));
  if (copies != std::vector(latest, allocated.end())) events.emplace_back("no copies of its own");
  lent = copies;
}

template <class Value>
Value Next(const Value& otherwise) {
  if (device.readings.empty()) return otherwise;
  const auto reading = device.readings.front();
  device.readings.pop_front();
  return std::get<Value>(reading);
}

// By name and size; never destroyed, so that no block is taken for leaked.
auto& Blocks() {
  static auto& blocks = *new std::map<void*, std::pair<std::string, std::size_t>>;
  return blocks;
}

template <class Element>
Element* MakeBlock(const std::string& name, const Element* elements, std::size_t count) {
  void* const block = std::malloc(count * sizeof *elements);
  Blocks()[block] = {name, count * sizeof *elements};
  return static_cast<Element*>(std::memcpy(block, elements, count * sizeof *elements));
}

char* Block(const std::string& text) { return MakeBlock(text, text.c_str(), text.size() + 1); }
std::int32_t* Block(const IntBlock& list) { return MakeBlock("array", list.data(), list.size()); }
char** Block(const PointerBlock& list) {
  std::vector<char*> slots;
  for (const char* text : list) slots.push_back(text == nullptr ? nullptr : Block(text));
  return MakeBlock("array", slots.data(), slots.size());
}

template <class Content>
auto NextBlock(const Content& otherwise) {
  Aside aside;
  const bool is_null = !device.readings.empty() && device.readings.front().index() == 0;
  return is_null ? nullptr : Block(Next(otherwise));
}

}  // namespace

std::string Call(const std::string& function, const std::vector<std::string>& arguments) {
  std::string call = function;
  for (const std::string& argument : arguments) call += (call == function ? "(" : ", ") + argument;
  return call + ')';
}

Log Record(const std::function<void()>& act) {
  events.clear();
  allocated.clear();
  lent.clear();
  output_size = output_seen = 0;
  FILE* const standard_output = std::exchange(stdout, open_memstream(&output, &output_size));
  watching_heap = true;
  act();
  watching_heap = false;
  NoteOutput();
  std::fclose(std::exchange(stdout, standard_output));
  std::free(output);
  events.push_back(std::to_string(allocated.size()));
  return events;
}

}  // namespace recording

using namespace recording;

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  Aside aside;
  Happened(Call("GetProperty", {key, default_value}));
  return device.properties.contains(key) ? device.properties[key] : default_value;
}

extern "C" {

#define NUMBER_GETTER(name, Number)                                           \
  Number name(const std::string& map, const std::string& key, Number given) { \
    Asked(#name, {&map, &key}, given);                                        \
    return Next(given);                                                       \
  }
NUMBER_GETTER(get_bool_from_map, cadrova_core_bool)
NUMBER_GETTER(get_int_from_map, std::int32_t)
NUMBER_GETTER(get_float_from_map, float)

char* get_str_from_map(const std::string& map, const std::string& key, const std::string& given) {
  Asked("get_str_from_map", {&map, &key, &given});
  return NextBlock(given);
}

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  Asked("cxx_sim_set_the_cadrova", {&name, &first, &second});
}

#define LIST_GETTER(name, Element, List)                          \
  Element* name(const std::string& map, const std::string& key) { \
    Asked(#name, {&map, &key});                                   \
    return NextBlock(List());                                     \
  }
LIST_GETTER(get_str_arr_from_map, char*, PointerBlock)
LIST_GETTER(get_int_arr_from_map, std::int32_t, IntBlock)
LIST_GETTER(get_map_arr_from_map, char*, PointerBlock)

// The linker sends every `free` here.
void __real_free(void* block);
void __wrap_free(void* block) {
  Aside aside;
  const auto found = Blocks().find(block);
  if (found == Blocks().end()) return __real_free(block);
  const auto& [name, size] = found->second;
  Happened("free " + name);
  std::memset(block, 0xDD, size);
}

#define EXISTENCE_TEST(name, Value)                                        \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    Asked(#name, {&map, &key});                                            \
    return device.exists[map];                                             \
  }
CADROVA_EXISTENCE_TESTS(EXISTENCE_TEST, EXISTENCE_TEST)

}  // extern "C"

void* operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (watching_heap) {
    Aside aside;
    NoteCopiesLeft();
    allocated.push_back(block);
  }
  return block;
}

void operator delete(void* block) noexcept {
  if (watching_heap) std::erase(lent, block);
  __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
