// System properties that read otherwise in this process than the property store has them.
#pragma once

#include <string>

// From now on `android::base::GetProperty` answers `value` for `key`, in the library too; empty
// reads as unset. It stands in front of any store, and so works for properties that can't be set.
void OverrideProperty(const std::string& key, const std::string& value);
