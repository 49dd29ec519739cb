// Values and results as JSON, each in one line. Infinite floats and NaN are the strings "inf",
// "-inf" and "nan". All throw a Failure for text that is not UTF-8.
#pragma once

#include <string>

#include "fleet/changes.h"
#include "lookup/explanation.h"

namespace cadrova::tools {

std::string ToJson(const Value& value);
std::string ToJson(const Explanation& explanation);
std::string ToJson(const Feature& feature);

// Prints a JSON array, one element per line, while its elements are made.
class JsonArrayPrinter {
 public:
  void Add(const std::string& json);
  // After the last element.
  void Finish();

 private:
  std::string text_ = "[";  // not printed yet
  bool is_empty_ = true;
};

// One element per device.
void PrintJson(const FleetChains& chains, const Results& results);
void AddChange(JsonArrayPrinter& array, const Feature& feature, const FleetChains& chains,
               const Change& change);

}  // namespace cadrova::tools
