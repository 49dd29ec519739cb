// The core and the property store of the benchmarks.
#pragma once

#include <string>

namespace bench {

extern struct Device {
  std::string region;
  std::string carrier;
  std::string element;        // each element of a list
  bool contains_item = true;  // what every existence test returns
} device;

}  // namespace bench
