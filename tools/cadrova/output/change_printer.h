// Prints which devices get other results from new data.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "fleet/changes.h"
#include "fleet/feature_index.h"

namespace cadrova::tools {

struct FamilyChanges {
  const Family* family;
  std::vector<Change> changes;
};

class ChangePrinter {
 public:
  // `format` is text, json or markdown. The contents are those before and after the change.
  static std::unique_ptr<ChangePrinter> Make(const std::string& format,
                                             const host::Contents& before,
                                             const host::Contents& after, const Fleet& fleet);
  ChangePrinter(const host::Contents& before, const host::Contents& after, const Fleet& fleet)
      : before_(before),
        after_(after),
        fleet_(fleet),
        is_changed_(fleet.regions.size() * fleet.carriers.size()) {}
  virtual ~ChangePrinter() = default;

  // Prints a feature that changes.
  void Add(const Feature& feature, const std::vector<FamilyChanges>& families);

  // Prints the totals. Returns whether a feature changes.
  bool Finish();

 protected:
  virtual void Print(const Feature& feature, const std::vector<FamilyChanges>& families) = 0;
  virtual void PrintTotals(const std::string& totals) = 0;

  const host::Contents &before_, &after_;
  const Fleet& fleet_;

 private:
  std::size_t features_ = 0;
  std::vector<bool> is_changed_;  // by device
};

}  // namespace cadrova::tools
