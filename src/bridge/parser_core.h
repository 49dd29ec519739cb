// The parser core's interface, as `libcadrova_ffi` exports it. The core holds all customization
// data; this header is the only place that says how it is asked.
//
// Strings go in as references to `std::string` objects, so the core and this library must be built
// against the same standard library. The core may read a string only during the call: it keeps no
// pointer to it and never frees it. Strings are bytes of no particular encoding; any may be empty.
//
// Blocks come back from the system allocator, and the caller releases them with `free`, never with
// `operator delete`. Pointers are 64 bits wide and integers little-endian.
//
// Nothing has to be called first, and no call can fail. Whatever locking the data needs is the
// core's own.
#pragma once

#include <bit>
#include <cstdint>
#include <string>

extern "C" {

// A `bool` as it crosses the boundary. Only the lowest bit counts, and compilers disagree on what a
// foreign `bool` of 2 means, so it goes both ways as a byte: an answer is tested with `IsTrue`, and
// a default made with `LowestBit`.
using cadrova_core_bool = std::uint8_t;

// Value getters: the item of that kind under `key` in `map`, or else `default_value`.
cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value);
std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value);
float get_float_from_map(const std::string& map, const std::string& key, float default_value);

// String block: bytes ended by the first NUL. Never NULL. Release: one `free`.
char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value);

// String array block: pointers to NUL-terminated strings, ended by a NULL pointer; NULL for no
// list. Release: `free` each string, then the array; each is an allocation of its own.
char** get_str_arr_from_map(const std::string& map, const std::string& key);

// Int array block: a count n, then n values; NULL for no list. A count of 0 or less is an empty
// list. Release: one `free`.
std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key);

// Pair array block: key, value, key, value, ... as pointers to NUL-terminated strings, ended by a
// NULL key, after which nothing may be read, or by a pair whose value is NULL, which does not
// count; NULL for no list. Release: one `free` of the array. The strings stay the core's.
char** get_map_arr_from_map(const std::string& map, const std::string& key);

// Existence tests: whether `map` holds an item of that kind under `key`.
cadrova_core_bool get_bool_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_int_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_float_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_str_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_str_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_int_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_map_arr_item_exist(const std::string& map, const std::string& key);

// The same, asked of the SIM customization data. There is none for floats.
cadrova_core_bool sim_get_bool_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_int_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_str_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_str_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_int_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_map_arr_item_exist(const std::string& map, const std::string& key);

// Hands two strings of SIM customization to the core, to be filed under `name`.
void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second);

}  // extern "C"

namespace cadrova::core {

static_assert(sizeof(void*) == 8 && std::endian::native == std::endian::little);

constexpr bool IsTrue(cadrova_core_bool answer) { return (answer & 1) != 0; }

// Volatile, since compilers take it for granted that a caller's `bool` is 0 or 1.
inline cadrova_core_bool LowestBit(const bool& flag) {
  return *reinterpret_cast<const volatile cadrova_core_bool*>(&flag) & 1;
}

}  // namespace cadrova::core
