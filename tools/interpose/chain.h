// The maps that one lookup asks, in order, and which of them answers.
#pragma once

#include <string>
#include <vector>

#include "interpose/call.h"

namespace cadrova::tools {

class Chain {
 public:
  struct Map {
    std::string name;
    bool is_sim;  // asked by the tests of SIM data
  };

  void Add(const Step& step) {
    using What = Step::What;
    if (step.what == What::kProperty || is_answered_) return;
    maps_.push_back({step.name, step.what == What::kSimTest});
    if (step.exists != nullptr) is_held_ = cadrova::core::IsTrue(*step.exists);
    // The last resort is read without a test.
    const bool is_read = step.what == What::kRead;
    if (is_read) is_held_ = Holds(step.test_of_kind, step.name, step.key);
    is_answered_ = is_held_ || is_read;
  }

  const std::vector<Map>& maps() const { return maps_; }

  // The last of them, where it holds the item; NULL where none does.
  const Map* answered_by() const { return is_held_ ? &maps_.back() : nullptr; }

 private:
  std::vector<Map> maps_;
  bool is_answered_ = false;
  bool is_held_ = false;
};

}  // namespace cadrova::tools
