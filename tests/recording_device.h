// A parser core, property store, printer and heap of the tests' own. They answer as scripted and
// write down, in order, whatever the library does with them.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace recording {

using Log = std::vector<std::string>;

struct Device {
  // Answers. Reads take theirs from the front, so that two reads may differ.
  std::map<std::string, std::string> properties;
  std::map<std::string, std::uint8_t> exists;  // by map name; 0 for a map that isn't here
  std::deque<std::uint8_t> bools;
  std::deque<std::int32_t> ints;
  std::deque<float> floats;
  std::deque<std::string> strings;
  std::function<void*()> list;  // makes the block, from `Block`

  // Is called after each event, to change the world meanwhile.
  std::function<void(const std::string& event)> meanwhile;

  Log log;
  std::vector<std::size_t> allocations;  // sizes, of `operator new`, while they are recorded
};

// The device of the running test; a new test starts with `device = {}`.
extern Device device;

// What `act` makes the library do. Heap traffic through `operator new` and `delete` is written
// down only with `RecordHeap`.
Log Record(const std::function<void()>& act);
Log RecordHeap(const std::function<void()>& act);

// A block of the core's of `size` bytes. Freeing it is written down as "free NAME" and overwrites
// it; the memory itself lives until the program ends.
void* Block(const std::string& name, std::size_t size);
char* StringBlock(const std::string& name, const std::string& bytes);

}  // namespace recording
