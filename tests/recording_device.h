// A parser core, property store, standard output and heap of the tests' own. They answer as
// scripted, and write down in order whatever the library does with them.
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

struct Device {
  std::map<std::string, std::string> properties = {};
  std::map<std::string, Byte> exists = {};  // by map name; 0 for a map that isn't here
  // What the core's getters answer in turn, nullptr for no block; and then the default.
  std::deque<std::variant<std::nullptr_t, Byte, int, float, std::string, IntBlock, PointerBlock>>
      readings = {};
};
extern Device device;

using Log = std::vector<std::string>;
std::string Call(const std::string& function, const std::vector<std::string>& arguments);

// What `act` makes the library do, and at the end the number of allocations by `operator new`.
// Among it is said where the core gets a string beyond the short-string buffer that is no private
// copy, or one that outlives the call that it was made for. Freeing one of the core's blocks is
// written down as "free TEXT" or "free array", and overwrites it.
Log Record(const std::function<void()>& act);

}  // namespace recording
