// Values: from an argument, and as text and JSON.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kinds.h"

using cadrova::watch::Value;

// Floats stay 32 bits wide, and so as short as in plain text. Members stay in their order.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

// `text` as a default of the kind of `zero`.
Value ParseDefault(const std::string& text, const Value& zero);

// As a shell takes it: a list has an element a line, and is nothing where it is empty.
std::string ToLines(const Value& value);

// As one line, in which a string and a number differ.
std::string ToText(const Value& value);

Json ToJson(const Value& value);

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
