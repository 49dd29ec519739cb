/// System properties, with the interface of the platform's base library. This property store is
/// fake: the properties are in the memory of the process. If the environment variable
/// CADROVA_HOST_PROPS names a file, its lines are the initial properties: `key=value`, or
/// `[key]: [value]` as getprop prints them. Both functions may be called from any thread.
#pragma once

#include <string>

namespace android::base {

/// Returns the value of the system property `key`, or `default_value` if it is unset or empty.
std::string GetProperty(const std::string& key, const std::string& default_value);

/// Sets the system property `key` to `value`. A property with an empty value reads as unset.
/// Returns whether it was set; this store always returns true.
bool SetProperty(const std::string& key, const std::string& value);

}  // namespace android::base
