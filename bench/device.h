// What the device of the benchmarks holds.
#pragma once

#include <string>

namespace bench {

extern struct Device {
  std::string region;
  std::string carrier;
  std::string element;  // of lists
  bool first_has_it = true;
} device;

}  // namespace bench
