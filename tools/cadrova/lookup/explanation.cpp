#include "lookup/explanation.h"

#include "output/capture.h"

namespace cadrova::tools {
namespace {

ChainEntry QueryMap(const ConsultedMap& map, const Query& query) {
  ChainEntry entry;
  entry.map = map.name;
  for (std::size_t i = 0; i < kKindCount; ++i) {
    const auto kind = static_cast<Kind>(i);
    if (!CoreContains(ExistenceTestOf(kind, map.is_sim), map.name, query.key)) continue;
    entry.kinds.push_back(kind);
    if (kind == query.kind) entry.value = ReadFromMap(map.name, query.key, query.default_value);
  }
  return entry;
}

}  // namespace

Explanation Explain(const Query& query) {
  Explanation explanation = {query, Record(query), {}};
  const Chain& consulted = explanation.recording.chain;
  Chain whole;
  DiscardStdout([&] { whole = RecordWholeChain(query); });
  for (const ConsultedMap& map : whole.maps()) {
    ChainEntry& entry = explanation.chain.emplace_back(QueryMap(map, query));
    const std::size_t position = explanation.chain.size();
    entry.is_consulted = position <= consulted.maps().size();
    entry.is_source = position == consulted.maps().size() && consulted.source() != nullptr;
  }
  return explanation;
}

}  // namespace cadrova::tools
