// Records what the library does during one lookup.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "interpose/chain.h"
#include "lookup/query.h"

namespace cadrova::tools {

struct ConsultedMap {
  std::string name;
  bool is_sim;

  bool operator==(const ConsultedMap&) const = default;
};

using Chain = BasicChain<std::vector<ConsultedMap>>;

// The map that the lookup's value came from, or NULL if it is the default. Throws a Failure if the
// core does not define the function that reads the value.
const ConsultedMap* SourceOf(const Chain& chain, const Value& value, const Query& query);

// The value that the core or the property store returned, as JSON.
std::string ReturnedValue(const DeviceCall& call);

struct Recording {
  Value value;
  std::string printed;                                          // by the library and the core
  std::vector<std::pair<std::string, std::string>> properties;  // name and value, in order
  std::vector<std::string> calls;                               // to the device, in order
  Chain chain;
  std::vector<std::string> readings;  // what it read from its last map, as JSON

  // What was printed, without the newline at its end.
  std::string PrintedLine() const {
    return printed.ends_with('\n') ? printed.substr(0, printed.size() - 1) : printed;
  }
};

// Makes the lookup and records it. A scalar or a string is read twice; the second reading is the
// value.
Recording Record(const Query& query);

// Makes the lookup with every existence test forced to false, and returns the whole chain. Prints
// as every lookup does.
Chain RecordWholeChain(const Query& query);

// Runs `action`. Calls `observe` with each call to the device, whose returned value it may change.
void Observe(const std::function<void(DeviceCall&)>& observe, const std::function<void()>& action);

// The system properties that contain the codes of the device.
constexpr char kRegionCode[] = "ro.orvel.region", kCarrierCode[] = "persist.sys.cota.carrier";

// From now on, the library reads `value` from the property. With an empty value it is unset. The
// property store does not change, so this works with any property store and any property.
void OverrideProperty(const std::string& name, const std::string& value);

// When this object is destroyed, the library reads the same values from properties as before.
class OverrideScope {
 public:
  OverrideScope();
  OverrideScope(const OverrideScope&) = delete;
  OverrideScope& operator=(const OverrideScope&) = delete;
  ~OverrideScope();

 private:
  std::map<std::string, std::string> overrides_;
};

}  // namespace cadrova::tools
