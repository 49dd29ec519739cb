/// System properties, as the platform's base library offers them; this one keeps them in the
/// process. They start out as the lines of the file that the environment variable
/// CADROVA_HOST_PROPS names, if it is set: `key=value`, or `[key]: [value]` as getprop prints them.
/// Both functions may be called from any thread.
#pragma once

#include <string>

namespace android::base {

/// The value of the system property `key`, or `default_value` if it is unset or empty.
std::string GetProperty(const std::string& key, const std::string& default_value);

/// Sets the system property `key` to `value`; an empty value makes it read as unset.
/// Returns whether it was set, which here it always is.
bool SetProperty(const std::string& key, const std::string& value);

}  // namespace android::base
