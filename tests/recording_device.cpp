#include "recording_device.h"

#include <android-base/properties.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <utility>

#include "existence_tests.h"
#include "parser_core.h"

namespace recording {

Device device;

namespace {

Log log;
std::vector<const void*> allocated;       // by the library since the previous line
std::vector<const void*> private_copies;  // of the last call, until they are destroyed
bool is_recording_heap = false;

// While it exists, allocations of the test itself are not recorded.
struct HeapPause {
  const bool was_recording = std::exchange(is_recording_heap, false);
  ~HeapPause() { is_recording_heap = was_recording; }
};

// The memory stream that replaces standard output, as of its last flush.
char* output = nullptr;
std::size_t output_size = 0;
std::size_t recorded_output_size = 0;

void RecordOutput() {
  const bool was_flushed = output_size > recorded_output_size;
  std::fflush(stdout);
  std::string text(output + recorded_output_size, output_size - recorded_output_size);
  recorded_output_size = output_size;
  if (text.empty()) return;
  for (std::size_t i = 0; (i = text.find('\n', i)) != std::string::npos;) text.replace(i, 1, "\\n");
  log.push_back("print " + text);
  if (was_flushed) log.emplace_back("flush");
}

void RecordOutlivingCopies() {
  if (!std::exchange(private_copies, {}).empty()) log.emplace_back("copies outlive their call");
}

void RecordEvent(const std::string& event) {
  RecordOutput();
  RecordOutlivingCopies();
  log.push_back(std::to_string(std::exchange(allocated, {}).size()) + ' ' + event);
}

template <class... Number>
void RecordCall(const char* function, std::initializer_list<const std::string*> strings,
                Number... number) {
  HeapPause pause;
  std::vector<std::string> arguments;
  std::vector<const void*> long_strings;
  for (const std::string* string : strings) {
    arguments.push_back(*string);
    if (string->size() > std::string().capacity()) long_strings.push_back(string->data());
  }
  (arguments.push_back(std::to_string(number)), ...);
  const auto latest = allocated.end() - std::min(std::ssize(long_strings), std::ssize(allocated));
  const bool are_private = long_strings == std::vector(latest, allocated.end());
  RecordEvent(Call(function, arguments));
  if (!are_private) log.emplace_back("no private copies");
  private_copies = long_strings;
}

// Nothing if the library reads another type or more often than the test expects.
template <class Content>
std::optional<Content> NextReading() {
  HeapPause pause;
  if (device.readings.empty()) return std::nullopt;
  const Reading reading = device.readings.front();
  device.readings.pop_front();
  const auto* const content = std::get_if<Content>(&reading);
  return content == nullptr ? std::nullopt : std::optional(*content);
}

// The name and the size of each block. Never destroyed, so that the leak checker does not report
// the blocks.
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
auto NextBlock() {
  HeapPause pause;
  const auto content = NextReading<Content>();
  return content ? Block(*content) : nullptr;
}

}  // namespace

std::string Call(const std::string& function, const std::vector<std::string>& arguments) {
  std::string call = function;
  for (const std::string& argument : arguments) call += (call == function ? "(" : ", ") + argument;
  return call + ')';
}

Log Record(const std::function<void()>& action) {
  log.clear();
  allocated.clear();
  output_size = recorded_output_size = 0;
  FILE* const standard_output = std::exchange(stdout, open_memstream(&output, &output_size));
  is_recording_heap = true;
  action();
  is_recording_heap = false;
  RecordEvent("end");
  std::fclose(std::exchange(stdout, standard_output));
  std::free(output);
  return log;
}

}  // namespace recording

using namespace recording;

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  HeapPause pause;
  RecordEvent(Call("GetProperty", {key, default_value}));
  return device.properties.contains(key) ? device.properties[key] : default_value;
}

extern "C" {

#define NUMBER_GETTER(name, Number)                                                   \
  Number name(const std::string& map, const std::string& key, Number default_value) { \
    RecordCall(#name, {&map, &key}, default_value);                                   \
    return NextReading<Number>().value_or(0);                                         \
  }
NUMBER_GETTER(get_bool_from_map, cadrova_core_bool)
NUMBER_GETTER(get_int_from_map, std::int32_t)
NUMBER_GETTER(get_float_from_map, float)

char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value) {
  RecordCall("get_str_from_map", {&map, &key, &default_value});
  return NextBlock<std::string>();
}

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  RecordCall("cxx_sim_set_the_cadrova", {&name, &first, &second});
}

#define LIST_GETTER(name, Element, List)                          \
  Element* name(const std::string& map, const std::string& key) { \
    RecordCall(#name, {&map, &key});                              \
    return NextBlock<List>();                                     \
  }
LIST_GETTER(get_str_arr_from_map, char*, PointerBlock)
LIST_GETTER(get_int_arr_from_map, std::int32_t, IntBlock)
LIST_GETTER(get_map_arr_from_map, char*, PointerBlock)

#define EXISTENCE_TEST(name, Value)                                        \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    HeapPause pause;                                                       \
    RecordCall(#name, {&map, &key});                                       \
    return device.exists[map];                                             \
  }
CADROVA_EXISTENCE_TESTS(EXISTENCE_TEST, EXISTENCE_TEST)

// The linker redirects every `free` to this one.
void __real_free(void* block);
void __wrap_free(void* block) {
  HeapPause pause;
  const auto found = Blocks().find(block);
  if (found == Blocks().end()) return __real_free(block);
  const auto& [name, size] = found->second;
  RecordEvent("free " + name);
  std::memset(block, 0xDD, size);
}

}  // extern "C"

void* operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (is_recording_heap) {
    HeapPause pause;
    RecordOutlivingCopies();
    allocated.push_back(block);
  }
  return block;
}

void operator delete(void* block) noexcept {
  if (is_recording_heap) std::erase(private_copies, block);
  __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
