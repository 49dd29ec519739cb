// What a process asked for, summed up when it ends.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace cadrova::tools {

class Summary {
 public:
  // Never destroyed: threads may still ask while the process exits.
  static Summary& The() {
    static Summary& summary = *new Summary;
    return summary;
  }

  // A lookup of `key`; `map` has answered, or none where it is empty.
  void AddLookup(const std::string& key, const std::string& kind, const std::string& map,
                 const std::string& value);

  // A question of a lookup that isn't known.
  void AddStep();

  void Write();

 private:
  Summary();

  struct Feature {
    long calls = 0;
    std::map<std::string, long> answers;  // by map
    std::string last_value;
  };
  std::mutex mutex_;
  std::map<std::pair<std::string, std::string>, Feature> features_;  // by key and kind
  long steps_ = 0;
};

}  // namespace cadrova::tools
