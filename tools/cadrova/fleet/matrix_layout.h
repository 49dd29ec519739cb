// The results of all devices as tables in which equal rows and equal columns are merged.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "fleet/passed_over.h"
#include "fleet/results.h"

namespace cadrova::tools {

// The result of one device, and the position of its map in the chain.
struct Cell {
  const Result* result = nullptr;  // NULL if the fleet has no such device
  std::uint32_t position = 0;
  const PassedOver* passed_over = nullptr;  // the first such map before that position, if any

  auto operator<=>(const Cell&) const = default;
};

// The codes of equal rows, or of equal columns.
struct CodeGroup {
  std::vector<std::size_t> codes;  // positions in the fleet
  bool is_rest = false;            // the largest group, if it has too many codes to list
};

// Regions are rows, carriers are columns.
struct MatrixTable {
  std::vector<CodeGroup> regions, carriers;
  std::vector<std::vector<Cell>> rows;
};

struct MatrixLayout {
  // Several tables if there are too many columns for one. Columns in which regions differ come
  // first.
  std::vector<MatrixTable> tables;

  // If the tables would still be too large, exceptions of single devices are listed here. The
  // tables then contain the results that these devices would get without their own maps.
  struct Exception {
    std::size_t region, carrier;
    Cell cell;
  };
  std::vector<Exception> exceptions;
};

// The layout contains pointers to `results` and `passed_over`. A table that does not fit gets fewer
// columns. `fits` is called in the order of the tables; the first one that fits is used.
MatrixLayout LayOut(const FleetChains& chains, const Results& results,
                    const PassedOverMaps& passed_over = {},
                    const std::function<bool(const MatrixTable&)>& fits = {});

// The heading of a row or column: its codes, each formatted by `show`, or "every region", or
// "9 others". `what` is "region" or "carrier".
std::string Heading(const CodeGroup& group, const std::vector<std::string>& codes,
                    const std::string& what, std::string (*show)(const std::string& code));

}  // namespace cadrova::tools
