// Values and results as JSON, one line each. Infinite floats and NaN are the strings "inf", "-inf"
// and "nan". All functions throw a Failure for text that is not UTF-8.
#pragma once

#include <string>

#include "fleet/changes.h"
#include "fleet/device_results.h"
#include "fleet/feature_index.h"
#include "fleet/findings.h"
#include "lookup/explanation.h"

namespace cadrova::tools {

std::string ToJson(const Value& value);
std::string ToJson(const Explanation& explanation);
// `file` is the customization file that has the feature.
std::string ToJson(const Feature& feature, const std::string& file);

// A feature by a family, with its result on one device, or with one object per device.
std::string ToJson(const Feature& feature, const DeviceResults& results,
                   const std::vector<Device>& devices, const host::Contents& contents);

// Prints a JSON array, one element per line, before all elements are known.
class JsonArrayPrinter {
 public:
  void Add(const std::string& json);
  // Call this after the last element.
  void Finish();

 private:
  std::string text_ = "[";  // not printed yet
  bool is_empty_ = true;
};

// One element per device.
void PrintJson(const FleetChains& chains, const Results& results);
struct ChangeContext {
  const Feature& feature;
  const Family& family;
  const Fleet& fleet;
  const host::Contents &before, &after;
};
void AddChange(JsonArrayPrinter& array, const ChangeContext& context, const Change& change);

std::string ToJson(const Finding& finding);

}  // namespace cadrova::tools
