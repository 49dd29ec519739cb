// The answers of all devices as one page of HTML, which needs nothing else.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fleet/matrix_layout.h"

class Page {
 public:
  // `source` is what holds the data.
  Page(std::string source, const Fleet& fleet);

  // A feature begins; the grids that are added then are of it.
  void Begin(const std::string& key, const std::string& kind);
  void Add(const std::string& family, const Grids& grids);

  std::string ToHtml() const;

 private:
  struct Section {
    std::string key, kind;
    std::vector<std::pair<std::string, std::string>> grids;  // of families
  };

  // Maps of one sort, such as those of a carrier.
  struct Sort {
    std::string name;
    bool is_asked = false;  // by a family on the page
  };

  std::vector<std::string> StylesOf(const std::string& family);

  std::string source_;
  const Fleet& fleet_;
  std::vector<Sort> sorts_;  // in the order of a SIM's chain, which has those of all families
  std::vector<Section> sections_;
};
