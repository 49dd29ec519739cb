#include "output/json.h"

#include <cmath>
#include <utility>

#include "output/console.h"
#include "output/text.h"

Json ToJson(const Value& value) {
  const auto* number = std::get_if<float>(&value);
  if (number != nullptr && !std::isfinite(*number)) {
    Fail("JSON has no " + ToText(value) + "; ask without --json");
  }
  return std::visit([](const auto& answer) { return Json(answer); }, value);
}

std::string ToLine(const Json& json) {
  try {
    return json.dump() + '\n';
  } catch (const Json::exception&) {
    Fail("JSON can't carry what is not UTF-8; ask without --json");
  }
}

void JsonArray::Add(const Json& element) {
  constexpr std::size_t kMuch = 1U << 16U;
  std::string line = ToLine(element);
  line.pop_back();
  text_ += (std::exchange(is_empty_, false) ? "\n" : ",\n") + line;
  if (text_.size() > kMuch) Print(std::exchange(text_, ""));
}

JsonArray::~JsonArray() { Print(text_ + (is_empty_ ? "]\n" : "\n]\n")); }
