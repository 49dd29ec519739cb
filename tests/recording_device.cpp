#include "recording_device.h"

#include <android-base/properties.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "bridge/parser_core.h"

namespace recording {

Device device;

namespace {

bool recording = false;
bool recording_heap = false;

std::map<void*, std::string>& Blocks() {
  // Never destroyed, so that what it holds is not taken for leaked.
  static auto& blocks = *new std::map<void*, std::string>;
  return blocks;
}

// Keeps the recorder's own heap traffic out of the log.
class HeapPause {
 public:
  HeapPause() : was_(std::exchange(recording_heap, false)) {}
  ~HeapPause() { recording_heap = was_; }
  HeapPause(const HeapPause&) = delete;
  HeapPause& operator=(const HeapPause&) = delete;

 private:
  bool was_;
};

void Happened(const std::string& event) {
  device.log.push_back(event);
  if (device.meanwhile) device.meanwhile(event);
}

template <class... Given>
void Asked(const char* function, const Given&... given) {
  HeapPause pause;
  std::string arguments;
  ((arguments += ", " + std::string(given)), ...);
  Happened(std::string(function) + '(' + (arguments.empty() ? "" : arguments.substr(2)) + ')');
}

template <class Value>
Value Next(std::deque<Value>& answers, const Value& otherwise) {
  HeapPause pause;
  if (answers.empty()) return otherwise;
  Value answer = answers.front();
  answers.pop_front();
  return answer;
}

template <class Element>
Element* NextList() {
  HeapPause pause;
  return device.list ? static_cast<Element*>(device.list()) : nullptr;
}

cadrova_core_bool Exists(const char* function, const std::string& map, const std::string& key) {
  Asked(function, map, key);
  HeapPause pause;
  const auto found = device.exists.find(map);
  return found == device.exists.end() ? 0 : found->second;
}

Log RecordWith(bool heap, const std::function<void()>& act) {
  device.log.clear();
  device.allocations.clear();
  recording = true;
  recording_heap = heap;
  act();
  recording = recording_heap = false;
  return device.log;
}

}  // namespace

Log Record(const std::function<void()>& act) { return RecordWith(false, act); }
Log RecordHeap(const std::function<void()>& act) { return RecordWith(true, act); }

void* Block(const std::string& name, std::size_t size) {
  HeapPause pause;
  void* const block = std::malloc(size);
  Blocks()[block] = name + '\0' + std::string(size, '\xDD');
  return block;
}

char* StringBlock(const std::string& name, const std::string& bytes) {
  auto* const block = static_cast<char*>(Block(name, bytes.size() + 1));
  std::memcpy(block, bytes.c_str(), bytes.size() + 1);
  return block;
}

}  // namespace recording

using recording::Asked;
using recording::device;
using recording::Exists;

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  Asked("GetProperty", key, '"' + default_value + '"');
  recording::HeapPause pause;
  const auto found = device.properties.find(key);
  return found == device.properties.end() ? default_value : found->second;
}

extern "C" {

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool given) {
  Asked("get_bool_from_map", map, key, std::to_string(given));
  return recording::Next(device.bools, given);
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key, std::int32_t given) {
  Asked("get_int_from_map", map, key, std::to_string(given));
  return recording::Next(device.ints, given);
}

float get_float_from_map(const std::string& map, const std::string& key, float given) {
  Asked("get_float_from_map", map, key, std::to_string(given));
  return recording::Next(device.floats, given);
}

char* get_str_from_map(const std::string& map, const std::string& key, const std::string& given) {
  Asked("get_str_from_map", map, key, given);
  recording::HeapPause pause;
  return recording::StringBlock("string", recording::Next(device.strings, given));
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  Asked("get_str_arr_from_map", map, key);
  return recording::NextList<char*>();
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  Asked("get_int_arr_from_map", map, key);
  return recording::NextList<std::int32_t>();
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  Asked("get_map_arr_from_map", map, key);
  return recording::NextList<char*>();
}

#define EXISTENCE_TEST(name)                                               \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return Exists(#name, map, key);                                        \
  }
EXISTENCE_TEST(get_bool_item_exist)
EXISTENCE_TEST(get_int_item_exist)
EXISTENCE_TEST(get_float_item_exist)
EXISTENCE_TEST(get_str_item_exist)
EXISTENCE_TEST(get_str_arr_item_exist)
EXISTENCE_TEST(get_int_arr_item_exist)
EXISTENCE_TEST(get_map_arr_item_exist)
EXISTENCE_TEST(sim_get_bool_item_exist)
EXISTENCE_TEST(sim_get_int_item_exist)
EXISTENCE_TEST(sim_get_str_item_exist)
EXISTENCE_TEST(sim_get_str_arr_item_exist)
EXISTENCE_TEST(sim_get_int_arr_item_exist)
EXISTENCE_TEST(sim_get_map_arr_item_exist)
#undef EXISTENCE_TEST

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  Asked("cxx_sim_set_the_cadrova", name, first, second);
}

// The linker sends the library's calls of these here.

void __real_free(void* block);

void __wrap_free(void* block) {
  recording::HeapPause pause;
  const auto found = recording::Blocks().find(block);
  if (found == recording::Blocks().end()) return __real_free(block);
  const std::string& entry = found->second;
  const std::size_t name_end = entry.find('\0');
  recording::Happened("free " + entry.substr(0, name_end));
  std::memcpy(block, entry.data() + name_end + 1, entry.size() - name_end - 1);
}

namespace {
int Print(const char* function, const std::string& line) {
  if (recording::recording) {
    Asked(function, line);
  } else {
    std::fwrite(line.data(), 1, line.size(), stdout);
  }
  return static_cast<int>(line.size());
}

__attribute__((format(printf, 1, 0))) int FormatAndPrint(const char* format, va_list arguments) {
  recording::HeapPause pause;
  char line[4096];
  const int size = std::vsnprintf(line, sizeof line, format, arguments);
  return Print("printf", std::string(line, static_cast<std::size_t>(size)));
}
}  // namespace

__attribute__((format(printf, 1, 2))) int __wrap_printf(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int size = FormatAndPrint(format, arguments);
  va_end(arguments);
  return size;
}

// What `printf` is called where it is fortified.
__attribute__((format(printf, 2, 3))) int __wrap___printf_chk(int, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int size = FormatAndPrint(format, arguments);
  va_end(arguments);
  return size;
}

int __wrap_puts(const char* text) {
  recording::HeapPause pause;
  const std::string line(text);
  return recording::recording ? Print("puts", line) : Print("puts", line + '\n');
}

int __real_fflush(FILE* stream);
int __wrap_fflush(FILE* stream) {
  if (recording::recording) Asked("fflush");
  return __real_fflush(stream);
}

}  // extern "C"

namespace {

void Allocated(std::size_t size) {
  if (!recording::recording_heap) return;
  recording::HeapPause pause;
  device.allocations.push_back(size);
  recording::Happened("new");
}

void Released(const volatile void* block) {
  if (block == nullptr || !recording::recording_heap) return;
  recording::HeapPause pause;
  recording::Happened("delete");
}

}  // namespace

#ifndef __has_feature  // as under GCC
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)

// The thread sanitizer has the operators for itself, and tells us of every allocation. While the
// heap is recorded, none but the library's are left.
extern "C" void __sanitizer_malloc_hook(const volatile void*, std::size_t size) { Allocated(size); }
extern "C" void __sanitizer_free_hook(const volatile void* block) { Released(block); }

#else

void* operator new(std::size_t size) {
  Allocated(size);
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) std::abort();
  return block;
}

void operator delete(void* block) noexcept {
  Released(block);
  __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

#endif
