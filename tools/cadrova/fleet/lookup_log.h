// What programs looked up, read from their traces.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lookup/families.h"

namespace cadrova::tools {

// A string of a trace. In a pipe, a long one may be cut: then only its beginning is known.
struct LoggedString {
  std::string text;
  bool is_cut = false;

  bool operator==(const LoggedString&) const = default;
};

// The lookups of one trace file, each once.
struct LookupLog {
  struct Lookup {
    const Family* family;  // NULL if unknown: only a call to the core is in the trace
    Kind kind;
    LoggedString key;
    int line;  // the first one
  };
  // What the program passed to setSimCadrova.
  struct SimItem {
    LoggedString key, value;
    int line;
  };

  std::string file;
  std::vector<Lookup> lookups;
  std::vector<SimItem> sim_items;
};

// Reads a trace that is called `file` in errors. Throws a Failure at the first line that no trace
// has, and for a summary. The last line may be incomplete.
LookupLog ParseLookupLog(std::string_view text, const std::string& file);

// The same for the file at `path`; "-" is standard input.
LookupLog ReadLookupLog(const std::string& path);

// A value for each key of a trace.
template <class Value>
class ByLoggedKey {
 public:
  Value& operator[](const LoggedString& key) { return (key.is_cut ? cut_ : whole_)[key.text]; }

  // The values of all keys that may be `key`: of itself, and of cut ones that it begins with.
  std::vector<const Value*> Find(const std::string& key) const {
    std::vector<const Value*> values;
    const auto found = whole_.find(key);
    if (found != whole_.end()) values.push_back(&found->second);
    for (const auto& [beginning, value] : cut_) {
      if (key.starts_with(beginning)) values.push_back(&value);
    }
    return values;
  }

 private:
  std::unordered_map<std::string, Value> whole_, cut_;
};

}  // namespace cadrova::tools
