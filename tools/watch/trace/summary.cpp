#include "summary.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <vector>

#include "json.h"
#include "output.h"

namespace cadrova::watch {

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
  using Line = std::array<std::string, 6>;
  std::vector<std::pair<long, Line>> lines;
  long lookups = 0;
  for (const auto& [name, feature] : features_) {
    std::string key, maps, none = "0";
    AppendName(key, name.first);
    for (const auto& [map, count] : feature.answers) {
      if (map.empty()) {
        none = std::to_string(count);
      } else {
        maps += (maps.empty() ? "" : ", ") + map + ' ' + std::to_string(count);
      }
    }
    lines.push_back(
        {feature.calls,
         {std::to_string(feature.calls), none, key, name.second, maps, feature.last_value}});
    lookups += feature.calls;
  }
  if (lookups + steps_ == 0) return;
  std::ranges::stable_sort(lines, std::greater(), &std::pair<long, Line>::first);
  lines.insert(lines.begin(),
               {0, {"calls", "by none", "feature", "kind", "answered by", "last value"}});
  std::array<std::size_t, 6> widths = {};
  for (const auto& [calls, line] : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  std::string text = LineStart() + "lookups: " + std::to_string(lookups);
  if (steps_ != 0) text += "; questions of lookups not known by name: " + std::to_string(steps_);
  for (const auto& [calls, line] : lines) {
    text += '\n';
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string blanks(widths[i] - line[i].size(), ' ');
      const bool is_last = i + 1 == widths.size();
      text += i < 2 ? blanks + line[i] : line[i] + (is_last ? "" : blanks);
      if (!is_last) text += "  ";
    }
  }
  Output::The().Write(text += '\n');
}

namespace {

[[gnu::destructor]] void WriteSummary() {
  if (Shows("summary")) Summary::The().Write();
}

}  // namespace
}  // namespace cadrova::watch
