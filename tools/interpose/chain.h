// The chain of one lookup, collected from its calls to the device.
#pragma once

#include "interpose/call.h"

namespace cadrova::tools {

// `Maps` is a list of structs with the members `name`, and `is_sim`: consulted with an existence
// test for SIM data.
template <class Maps>
class BasicChain {
 public:
  void Add(const DeviceCall& call) {
    using Type = DeviceCall::Type;
    if (call.type == Type::kGetProperty) return;
    const bool is_read = call.type == Type::kRead;
    if (is_read && (is_read_ || contains_item_) && maps_.back().name == call.name) {
      is_read_ = true;  // after its existence test, or once more
      return;
    }
    maps_.push_back({call.name, call.type == Type::kSimTest});
    is_read_ = is_read;
    contains_item_ = call.exists != nullptr && core::IsTrue(*call.exists);
    // The last map of a chain is read without an existence test.
    if (is_read) contains_item_ = CoreContains(call.find_test(call.caller), call.name, call.key);
  }

  void Clear() {
    maps_.Clear();
    is_read_ = contains_item_ = false;
  }

  // The maps that the lookup consulted, in order.
  const Maps& maps() const { return maps_; }

  // Whether the value was read from the last map. If not, it is unknown where the value comes from.
  bool IsRead() const { return is_read_; }

  // Whether the value comes from a map, which is the last one. If not, and it was read, it is the
  // default. A value other than the default comes from that map even if the core's existence test
  // does not find it there.
  bool HasSource(bool is_default) const { return is_read_ && (contains_item_ || !is_default); }

 private:
  Maps maps_;
  bool is_read_ = false;
  bool contains_item_ = false;
};

}  // namespace cadrova::tools
