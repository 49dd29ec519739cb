#include "android-base/properties.h"

#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "cadrova/host.h"
#include "file.h"

namespace android::base {
namespace {

using cadrova::host::Error;
using cadrova::host::ExitWith;
using cadrova::host::Printable;
using cadrova::host::ReadFile;
using Properties = std::map<std::string, std::string>;

std::string_view WithoutBlanksAround(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

// The key and the value of `line`, or nothing if it is not a property. A line is `key=value`, with
// or without blanks around key and value, or `[key]: [value]`, in which blanks are part of the
// value.
std::optional<std::pair<std::string, std::string>> ParseLine(std::string_view line) {
  std::string_view key, value;
  if (line.starts_with('[')) {
    const std::size_t middle = line.find("]: [");
    if (middle == std::string_view::npos || !line.ends_with(']')) return std::nullopt;
    key = line.substr(1, middle - 1);
    value = line.substr(middle + 4, line.size() - middle - 5);
  } else {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    key = WithoutBlanksAround(line.substr(0, equals));
    value = WithoutBlanksAround(line.substr(equals + 1));
  }
  const bool is_name = !key.empty() && key.find_first_of(" \t") == std::string_view::npos;
  const bool has_control =
      std::ranges::any_of(line, [](unsigned char byte) { return byte < ' ' || byte == 0x7F; });
  if (!is_name || has_control) return std::nullopt;
  return std::pair(std::string(key), std::string(value));
}

Properties Load(const char* file) {
  Properties properties;
  if (file == nullptr || *file == '\0') return properties;
  auto contents = ReadFile(file);
  if (auto* error = std::get_if<Error>(&contents)) {
    error->reason += "; name another file with CADROVA_HOST_PROPS";
    ExitWith(*error);
  }
  std::string_view rest = std::get<std::string>(contents);
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
  for (int number = 1; !rest.empty(); ++number) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = WithoutBlanksAround(line);
    if (line.empty() || line.starts_with('#')) continue;
    auto property = ParseLine(line);
    if (!property) {
      const std::string quoted = Printable(line.substr(0, 100));
      ExitWith(Error{file, {number, 0}, "not a key=value line: " + quoted, {}});
    }
    properties.insert_or_assign(std::move(property->first), std::move(property->second));
  }
  return properties;
}

// All properties, loaded from the file at the first call. Never destroyed: threads may still make
// lookups while the process exits.
class PropertyStore {
 public:
  static PropertyStore& Instance() {
    static PropertyStore& store = *new PropertyStore;
    return store;
  }

  // Calls `visitor` with the properties, while no other thread uses them. Returns what it returns.
  auto Visit(auto visitor) {
    const std::lock_guard lock(mutex_);
    if (!properties_) properties_ = Load(std::getenv("CADROVA_HOST_PROPS"));
    return visitor(*properties_);
  }

  void Clear() {
    const std::lock_guard lock(mutex_);
    properties_.reset();
  }

 private:
  // A child of `fork` has only the thread that forks. If another thread held the lock, nothing
  // would release it in the child, and the properties could be half changed. So forks take the
  // lock.
  PropertyStore() {
    pthread_atfork([] { Instance().mutex_.lock(); }, [] { Instance().mutex_.unlock(); },
                   [] { Instance().mutex_.unlock(); });
  }

  std::mutex mutex_;
  std::optional<Properties> properties_;
};

// A fork during the first call could leave the static object of `Instance` half made in the child.
// Handlers for `fork` that the program adds later run while the lock is free.
[[gnu::constructor]] void MakePropertyStore() { PropertyStore::Instance(); }

}  // namespace

// Everything else in this library is hidden.
#pragma GCC visibility push(default)

std::string GetProperty(const std::string& key, const std::string& default_value) {
  return PropertyStore::Instance().Visit([&](const Properties& properties) {
    const auto found = properties.find(key);
    return found == properties.end() || found->second.empty() ? default_value : found->second;
  });
}

bool SetProperty(const std::string& key, const std::string& value) {
  return PropertyStore::Instance().Visit([&](Properties& properties) {
    properties.insert_or_assign(key, value);
    return true;
  });
}

}  // namespace android::base

void cadrova::host::ClearProperties() { android::base::PropertyStore::Instance().Clear(); }

#pragma GCC visibility pop
