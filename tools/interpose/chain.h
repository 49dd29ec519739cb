// The chain of one lookup, collected from its calls to the device.
#pragma once

#include <string>
#include <vector>

#include "interpose/call.h"

namespace cadrova::tools {

class Chain {
 public:
  struct Map {
    std::string name;
    bool is_sim;  // consulted with an existence test for SIM data
  };

  void Add(const DeviceCall& call) {
    using Type = DeviceCall::Type;
    // When a map contains the item, the library consults no other map.
    if (call.type == Type::kGetProperty || is_complete_) return;
    maps_.push_back({call.name, call.type == Type::kSimTest});
    if (call.exists != nullptr) last_contains_item_ = cadrova::core::IsTrue(*call.exists);
    // The last map of a chain is read without an existence test.
    const bool is_read = call.type == Type::kRead;
    if (is_read) last_contains_item_ = CoreContains(call.test, call.name, call.key);
    is_complete_ = last_contains_item_ || is_read;
  }

  // The maps that the lookup consulted, in order.
  const std::vector<Map>& maps() const { return maps_; }

  // The map that the value came from, or NULL if the value is the default.
  const Map* source() const { return last_contains_item_ ? &maps_.back() : nullptr; }

 private:
  std::vector<Map> maps_;
  bool is_complete_ = false;
  bool last_contains_item_ = false;
};

}  // namespace cadrova::tools
