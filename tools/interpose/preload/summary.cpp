#include "summary.h"

#include <pthread.h>

#include <functional>
#include <vector>

#include "common/table.h"
#include "common/text.h"
#include "output.h"

namespace cadrova::tools {

// After a fork, the child counts only its own lookups.
Summary::Summary() {
  pthread_atfork([] { Instance().mutex_.lock(); }, [] { Instance().mutex_.unlock(); },
                 [] {
                   Instance().features_.clear();
                   Instance().unnamed_calls_ = 0;
                   Instance().mutex_.unlock();
                 });
}

void Summary::AddLookup(const std::string& key, const std::string& kind, const std::string& source,
                        const std::string& value) {
  const std::lock_guard lock(mutex_);
  Feature& feature = features_[{key, kind}];
  ++feature.lookups;
  ++feature.lookups_by_source[source];
  feature.last_value = value;
}

void Summary::AddUnnamedCall() {
  const std::lock_guard lock(mutex_);
  ++unnamed_calls_;
}

void Summary::Write() {
  const std::lock_guard lock(mutex_);
  std::multimap<long, Row, std::greater<>> rows;  // by number of lookups, then by key and kind
  long lookups = 0;
  for (auto& [key_and_kind, feature] : features_) {
    const auto& [key, kind] = key_and_kind;
    const long by_default = feature.lookups_by_source[""];
    feature.lookups_by_source.erase("");
    const std::string sources = Join(feature.lookups_by_source, ", ", [](const auto& source) {
      return source.first + ' ' + std::to_string(source.second);
    });
    rows.insert({feature.lookups,
                 {std::to_string(feature.lookups), std::to_string(by_default), DisplayName(key),
                  kind, sources, feature.last_value}});
    lookups += feature.lookups;
  }
  if (lookups + unnamed_calls_ == 0) return;
  std::vector<Row> table = {{"lookups", "default", "key", "kind", "from maps", "last value"}};
  for (auto& [count, row] : rows) table.push_back(std::move(row));
  std::string text = LineStart() + "lookups: " + std::to_string(lookups);
  if (unnamed_calls_ != 0) {
    text += "; calls by lookups without a name: " + std::to_string(unnamed_calls_);
  }
  if (lookups != 0) text += '\n' + Join(AlignedLines(table, 2), "\n");
  Output::Instance().Write(text += '\n');
}

namespace {

[[gnu::destructor]] void WriteSummaryAtExit() {
  if (Mode() == TraceMode::kSummary) Summary::Instance().Write();
}

}  // namespace
}  // namespace cadrova::tools
