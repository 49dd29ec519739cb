// The answers of all devices as grids, in which those that are answered alike stand together.
#pragma once

#include <string>
#include <vector>

#include "fleet/results.h"

// Codes whose devices are all answered alike.
struct CodeGroup {
  std::vector<std::size_t> codes;  // counted from 0
  bool is_rest = false;            // the largest, where it is larger than can be taken in at a look
};

// Regions down, carriers across.
struct Grid {
  std::vector<CodeGroup> regions, carriers;
  std::vector<std::vector<const Answer*>> rows;  // into the answers that it was made of
};

struct Grids {
  // What is asked of more carriers than fit side by side is in several grids, those first in which
  // regions differ.
  std::vector<Grid> grids;

  // Where the grids would still be large, what only one device is answered stands here instead, and
  // they have what it would be answered else.
  struct Single {
    std::size_t region, carrier;
    const Answer* answer;
  };
  std::vector<Single> singles;
};

Grids ToGrids(const Chains& chains, const Answers& answers);

// The codes of a row or column, each as `name` has it. `what` they are: "region".
std::string Label(const CodeGroup& group, const std::vector<std::string>& codes,
                  const std::string& what, std::string (*name)(const std::string& code));
