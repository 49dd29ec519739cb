// Values as JSON on standard output.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/value.h"

// Floats stay 32 bits wide, and so as short as in plain text. Members stay in their order.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

Json ToJson(const cadrova::tools::Value& value);

// One line; fails for what is not UTF-8.
std::string ToLine(const Json& json);

// A JSON array on standard output, an element a line.
class JsonArray {
 public:
  JsonArray() = default;
  JsonArray(const JsonArray&) = delete;
  JsonArray& operator=(const JsonArray&) = delete;
  ~JsonArray();

  void Add(const Json& element);

 private:
  std::string text_ = "[";  // not yet printed
  bool is_empty_ = true;
};
