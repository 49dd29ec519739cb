#include "android-base/properties.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <string>

namespace android::base {
namespace {

using Properties = std::map<std::string, std::string>;

// What can't be read ends the process: nobody is answered from half a file.
[[noreturn]] void Stop(const char* file, const std::string& what) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s%s\n", file, what.c_str());
  std::_Exit(2);
}

Properties Load(const char* file) {
  Properties properties;
  if (file == nullptr || *file == '\0') return properties;
  std::ifstream lines(file);
  if (!lines) Stop(file, ": can't read the properties that CADROVA_HOST_PROPS names");
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    if (line.empty() || line.front() == '#') continue;
    const std::size_t equals = line.find('=');
    if (equals == 0 || equals == std::string::npos) {
      Stop(file, ":" + std::to_string(number) + ": not a key=value line: " + line);
    }
    properties.insert_or_assign(line.substr(0, equals), line.substr(equals + 1));
  }
  if (lines.bad()) Stop(file, ": can't read the properties to their end");
  return properties;
}

struct Store {
  std::mutex mutex;
  Properties properties = Load(std::getenv("CADROVA_HOST_PROPS"));
};

// Never destroyed: threads may still ask while the process exits.
Store& TheStore() {
  static Store& store = *new Store;
  return store;
}

}  // namespace

std::string GetProperty(const std::string& key, const std::string& default_value) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  const auto found = store.properties.find(key);
  return found == store.properties.end() || found->second.empty() ? default_value : found->second;
}

bool SetProperty(const std::string& key, const std::string& value) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  store.properties.insert_or_assign(key, value);
  return true;
}

}  // namespace android::base
