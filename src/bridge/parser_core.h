// The interface of the parser core, as `libcadrova_ffi` exports it. The core contains all
// customization data. No other header declares its functions.
//
// Strings are passed as references to `std::string` objects, so the core and this library must be
// built against the same standard library. The core may read a string only during the call: it
// keeps no pointer to it and never frees it. Strings are bytes in no particular encoding, and any
// string may be empty.
//
// The core allocates the blocks that it returns with the system allocator. The caller releases them
// with `free`, never with `operator delete`. Pointers have 64 bits, and integers are little-endian.
//
// No function must be called before the others, and no call can fail. The core does any locking
// that its data needs.
#pragma once

#include <bit>
#include <cstdint>
#include <string>

extern "C" {

// A `bool` between the library and the core, in both directions. Only the lowest bit counts.
// Compilers disagree on the meaning of a `bool` whose byte is 2, so it is declared as a byte:
// `IsTrue` tests a returned byte, and `LowestBit` makes a default.
using cadrova_core_bool = std::uint8_t;

// Value getters: return the item of that kind under `key` in `map`, or `default_value` if there is
// none.
cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value);
std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value);
float get_float_from_map(const std::string& map, const std::string& key, float default_value);

// Returns a string block: bytes that end before the first NUL. Never NULL. Release: one `free`.
char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value);

// Returns a string array block: pointers to NUL-terminated strings, ended by a NULL pointer. NULL
// if there is no list. Release: `free` each string, then the array.
char** get_str_arr_from_map(const std::string& map, const std::string& key);

// Returns an int array block: a count n, then n values. NULL if there is no list. A count of 0 or
// less is an empty list. Release: one `free`.
std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key);

// Returns a pair array block: key, value, key, value, ... as pointers to NUL-terminated strings.
// It ends with a NULL key, after which nothing may be read, or with a pair whose value is NULL and
// which is not part of the list. NULL if there is no list. Release: one `free` of the array. The
// core owns the strings.
char** get_map_arr_from_map(const std::string& map, const std::string& key);

// Existence tests: return whether `map` contains an item of that kind under `key`.
cadrova_core_bool get_bool_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_int_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_float_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_str_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_str_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_int_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool get_map_arr_item_exist(const std::string& map, const std::string& key);

// The same for SIM customization data. There is no such test for floats.
cadrova_core_bool sim_get_bool_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_int_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_str_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_str_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_int_arr_item_exist(const std::string& map, const std::string& key);
cadrova_core_bool sim_get_map_arr_item_exist(const std::string& map, const std::string& key);

// Passes two strings of SIM customization data to the core, which stores them under `name`.
void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second);

}  // extern "C"

namespace cadrova::core {

static_assert(sizeof(void*) == 8 && std::endian::native == std::endian::little);

constexpr bool IsTrue(cadrova_core_bool byte) { return (byte & 1) != 0; }

// Volatile, because compilers assume that the byte of a `bool` is 0 or 1.
inline cadrova_core_bool LowestBit(const bool& flag) {
  return *reinterpret_cast<const volatile cadrova_core_bool*>(&flag) & 1;
}

}  // namespace cadrova::core
