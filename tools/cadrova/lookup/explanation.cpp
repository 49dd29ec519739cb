#include "lookup/explanation.h"

#include <algorithm>
#include <span>

#include "common/json_text.h"
#include "common/text.h"
#include "lookup/data_source.h"
#include "output/capture.h"

namespace cadrova::tools {
namespace {

std::string NamesOf(std::span<const ConsultedMap> maps) {
  return Join(maps, ", ", [](const ConsultedMap& map) { return DisplayName(map.name); });
}

// Records the lookup, then queries each map of its chain. Compares the two.
class Explainer {
 public:
  Explainer(const Query& query, const host::Contents* contents)
      : explanation_{query, Record(query), {}, {}, {}}, contents_(contents) {
    if (contents != nullptr) explanation_.file = contents->file;
  }

  Explanation Explain() {
    DiscardStdout([&] { QueryChain(); });
    return std::move(explanation_);
  }

 private:
  void QueryChain() {
    const ConsultedMap* const source = SourceOf(recording_.chain, recording_.value, query_);
    const std::size_t consulted = recording_.chain.maps().size();
    const std::vector<ConsultedMap> maps = WholeChain();
    for (const ConsultedMap& map : maps) {
      // A chain may contain a map twice.
      const auto first = static_cast<std::size_t>(std::ranges::find(maps, map) - maps.begin());
      const bool is_known = first < explanation_.chain.size();
      ChainEntry entry = is_known ? explanation_.chain[first] : QueryMap(map);
      const std::size_t position = explanation_.chain.size() + 1;
      entry.is_consulted = position <= consulted;
      entry.is_source = position == consulted && source != nullptr;
      if (entry.is_consulted) CompareExistence(entry);
      if (position == consulted) CompareReadings(entry);
      explanation_.chain.push_back(entry);
    }
  }

  // The maps that the lookup consulted, and the rest of its chain.
  std::vector<ConsultedMap> WholeChain() {
    std::vector<ConsultedMap> maps = recording_.chain.maps();
    const Chain whole = RecordWholeChain(query_);
    const std::span<const ConsultedMap> repeated = whole.maps();
    const auto rest = repeated.subspan(std::min(maps.size(), repeated.size()));
    const std::string names = NamesOf(repeated.first(repeated.size() - rest.size()));
    if (names != NamesOf(maps)) {
      Warn("the lookup consulted " + NamesOf(maps) + "; repeated, it consulted " + names);
    }
    maps.insert(maps.end(), rest.begin(), rest.end());
    return maps;
  }

  ChainEntry QueryMap(const ConsultedMap& map) const {
    ChainEntry entry;
    entry.map = map.name;
    for (std::size_t i = 0; i < kKindCount; ++i) {
      const auto kind = static_cast<Kind>(i);
      if (!CoreContains(ExistenceTestOf(kind, map.is_sim), map.name, query_.key)) continue;
      entry.kinds.push_back(kind);
      if (kind == query_.kind) entry.value = Read(map.name);
    }
    if (contents_ == nullptr) return entry;
    entry.exists =
        std::ranges::binary_search(contents_->maps, map.name, {}, &host::Contents::Map::name);
    entry.place = PlaceOf(*contents_, map.name, query_.key);
    return entry;
  }

  // The lookup went on after each map except the source, so it did not find the item there.
  void CompareExistence(ChainEntry& entry) {
    const std::string item = DisplayName(query_.key) + " as " + ToString(query_.kind) + " in " +
                             DisplayName(entry.map) + ", but ";
    if (entry.value && !entry.is_source) {
      Warn("the core finds " + item + "did not find it during the lookup");
    } else if (entry.is_source && !entry.value) {
      Warn("the core does not find " + item + "returned it during the lookup");
      entry.value = Read(entry.map);
    }
  }

  // The library reads a scalar or a string twice, and its value is the second reading.
  void CompareReadings(const ChainEntry& last) {
    std::vector<std::string> readings = recording_.readings;
    if (last.is_source && last.value) readings.push_back(ToJsonText(*last.value));
    readings.erase(std::ranges::unique(readings).begin(), readings.end());
    if (readings.size() > 1) {
      Warn("the core returned " + Join(readings, ", then ") + " from " + DisplayName(last.map));
    }
  }

  Value Read(const std::string& map) const {
    return ReadFromMap(map, query_.key, query_.default_value);
  }
  void Warn(const std::string& warning) { explanation_.warnings.push_back(warning); }

  Explanation explanation_;
  const host::Contents* const contents_;
  const Query& query_ = explanation_.query;
  const Recording& recording_ = explanation_.recording;
};

}  // namespace

Explanation Explain(const Query& query, const host::Contents* contents) {
  return Explainer(query, contents).Explain();
}

const ChainEntry* Explanation::source() const {
  const auto found = std::ranges::find(chain, true, &ChainEntry::is_source);
  return found == chain.end() ? nullptr : &*found;
}

}  // namespace cadrova::tools
