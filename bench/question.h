// The question that the library and its peer answer over the same data: ITEMS items, item i an
// integer under "feature.i", dealt in turn to the default map, the region's, the carrier's and that
// of both. FEATURES of them, spread evenly, are asked for in turn.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace bench {

// Arguments: ITEMS FEATURES CALLS
inline int AskAll(int argc, char** argv, const std::function<int(const std::string& key)>& ask) {
  if (argc != 4) {
    std::fprintf(stderr, "%s: use ITEMS FEATURES CALLS\n", argv[0]);
    return 2;
  }
  const long items = std::atol(argv[1]);
  const long features = std::atol(argv[2]);
  long feature = 0;
  for (long calls = std::atol(argv[3]); calls > 0; --calls) {
    feature = (feature + 611'953) % features;  // a prime, so that each has its turn
    const long item = feature * (items / features);
    if (ask("feature." + std::to_string(item)) != item) {
      std::fprintf(stderr, "%s: wrong answer for item %ld\n", argv[0], item);
      return 1;
    }
  }
  return 0;
}

}  // namespace bench
