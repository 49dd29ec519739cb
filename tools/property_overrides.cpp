#include "property_overrides.h"

#include <dlfcn.h>

#include <map>

// The executable's definition comes before the base library's, in the library's calls too.
#pragma GCC visibility push(default)
#include <android-base/properties.h>
#pragma GCC visibility pop

namespace {

std::map<std::string, std::string>& Overrides() {
  static std::map<std::string, std::string> overrides;
  return overrides;
}

// The next definition under our own name, whatever that is under this standard library.
auto* NextGetProperty() {
  auto* own = &android::base::GetProperty;
  Dl_info symbol;
  dladdr(reinterpret_cast<const void*>(own), &symbol);
  return reinterpret_cast<decltype(own)>(dlsym(RTLD_NEXT, symbol.dli_sname));
}

}  // namespace

void OverrideProperty(const std::string& key, const std::string& value) {
  Overrides().insert_or_assign(key, value);
}

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  const auto found = Overrides().find(key);
  if (found == Overrides().end()) return NextGetProperty()(key, default_value);
  return found->second.empty() ? default_value : found->second;
}
