// A parser core, a property store, standard output and a heap for the library test. The test sets
// what they return. They record what the library does with them.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace recording {

using Byte = std::uint8_t;
using IntBlock = std::vector<std::int32_t>;
using PointerBlock = std::vector<const char*>;
// nullptr if there is no block.
using Reading = std::variant<std::nullptr_t, Byte, int, float, std::string, IntBlock, PointerBlock>;

struct Device {
  std::map<std::string, std::string> properties = {};
  std::map<std::string, Byte> exists = {};  // by map name; 0 if the name is missing
  std::deque<Reading> readings = {};        // what the value getters return in turn
};
extern Device device;

// One line per event. A number at its start counts the calls of `operator new` since the previous
// line.
//   2 get_int_from_map(EU, k, 7)   a call to the core or the property store
//   0 free TEXT, 0 free array      a block of the core was released (it is then overwritten)
//   0 end                          the action ended
//   print TEXT                     TEXT was printed, with \n for a newline
//   no private copies              the core got a long string that was not copied for this call
//   copies outlive their call      the copies were not destroyed directly after the call
//   flush                          standard output was flushed
using Log = std::vector<std::string>;
std::string Call(const std::string& function, const std::vector<std::string>& arguments);

// Records what the library does while `action` runs.
Log Record(const std::function<void()>& action);

}  // namespace recording
