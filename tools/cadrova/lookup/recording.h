// What the library does during one lookup.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "interpose/chain.h"
#include "lookup/query.h"

namespace cadrova::tools {

struct Recording {
  Value value;
  std::string printed;                                          // by the library
  std::vector<std::pair<std::string, std::string>> properties;  // name and value, in order
  std::vector<std::string> calls;                               // of the device, in order
  Chain chain;
};

// Makes the lookup and records it.
Recording Record(const Query& query);

// The whole chain of the lookup, also the maps after the one that contains the item: every
// existence test is forced to false. Prints as every lookup does.
Chain RecordWholeChain(const Query& query);

// While `action` runs, `observe` sees each call of the device, and may change its answer.
void Observe(const std::function<void(DeviceCall&)>& observe, const std::function<void()>& action);

// The system properties that contain the codes of the device.
constexpr char kRegionCode[] = "ro.orvel.region", kCarrierCode[] = "persist.sys.cota.carrier";

// From now on the library reads `value` from the property; an empty one is unset. The store is not
// changed, so it may be any, and the property a read-only one.
void OverrideProperty(const std::string& name, const std::string& value);

}  // namespace cadrova::tools
