#include "summary.h"

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "common/json_text.h"
#include "common/table.h"
#include "output.h"

namespace cadrova::tools {

// A child of the process sums up what it asks for itself.
Summary::Summary() {
  pthread_atfork([] { The().mutex_.lock(); }, [] { The().mutex_.unlock(); },
                 [] {
                   The().features_.clear();
                   The().steps_ = 0;
                   The().mutex_.unlock();
                 });
}

void Summary::AddLookup(const std::string& key, const std::string& kind, const std::string& map,
                        const std::string& value) {
  const std::lock_guard lock(mutex_);
  Feature& feature = features_[{key, kind}];
  ++feature.calls;
  ++feature.answers[map];
  feature.last_value = value;
}

void Summary::AddStep() {
  const std::lock_guard lock(mutex_);
  ++steps_;
}

void Summary::Write() {
  const std::lock_guard lock(mutex_);
  std::vector<std::pair<long, Row>> rows;
  long lookups = 0;
  for (const auto& [name, feature] : features_) {
    const auto& [key, kind] = name;
    std::string maps, by_none = "0";
    for (const auto& [map, count] : feature.answers) {
      if (map.empty()) {
        by_none = std::to_string(count);
      } else {
        maps += (maps.empty() ? "" : ", ") + map + ' ' + std::to_string(count);
      }
    }
    rows.push_back(
        {feature.calls,
         {std::to_string(feature.calls), by_none, Named(key), kind, maps, feature.last_value}});
    lookups += feature.calls;
  }
  if (lookups + steps_ == 0) return;
  std::ranges::stable_sort(rows, std::greater(), &std::pair<long, Row>::first);
  std::vector<Row> table = {{"calls", "by none", "feature", "kind", "answered by", "last value"}};
  for (auto& [calls, row] : rows) table.push_back(std::move(row));
  std::string text = LineStart() + "lookups: " + std::to_string(lookups);
  if (steps_ != 0) text += "; questions of lookups not known by name: " + std::to_string(steps_);
  if (lookups != 0) {
    for (const std::string& line : Aligned(table, 2)) text += '\n' + line;
  }
  Output::The().Write(text += '\n');
}

namespace {

[[gnu::destructor]] void WriteSummary() {
  if (Shows("summary")) Summary::The().Write();
}

}  // namespace
}  // namespace cadrova::tools
