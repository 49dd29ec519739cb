// Counts the lookups of a process, and writes a table when it ends.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace cadrova::tools {

class Summary {
 public:
  // Never destroyed: threads may still make lookups while the process exits.
  static Summary& Instance() {
    static Summary& summary = *new Summary;
    return summary;
  }

  // Counts a lookup. `source` is the map that the value came from, or empty for the default.
  void AddLookup(const std::string& key, const std::string& kind, const std::string& source,
                 const std::string& value);

  // Counts a call to the device by a lookup whose name is unknown.
  void AddUnnamedCall();

  void Write();

 private:
  Summary();

  struct Feature {
    long lookups = 0;
    std::map<std::string, long> lookups_by_source;
    std::string last_value;
  };
  std::mutex mutex_;
  std::map<std::pair<std::string, std::string>, Feature> features_;  // by key and kind
  long unnamed_calls_ = 0;
};

}  // namespace cadrova::tools
