#include "values.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "console.h"
#include "json.h"

using cadrova::watch::AppendJson;
using cadrova::watch::kIsList;

Value ParseDefault(const std::string& text, const Value& zero) {
  const auto refuse = [&](const std::string& why) { Fail("default '" + text + "' " + why); };
  const char* const end = text.data() + text.size();
  if (std::holds_alternative<bool>(zero)) {
    if (text != "true" && text != "false") refuse("is no bool; use true or false");
    return text == "true";
  }
  if (std::holds_alternative<int>(zero)) {
    int value = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range) refuse("is out of the range of a 32-bit int");
    if (error != std::errc() || rest != end) refuse("is no int; use decimal digits");
    return value;
  }
  if (std::holds_alternative<float>(zero)) {
    char* rest = nullptr;
    const float value = std::strtof(text.c_str(), &rest);
    const bool starts_well = !text.empty() && !std::isspace(static_cast<unsigned char>(text[0]));
    if (!starts_well || rest != end) refuse("is no float; write it like 0.5 or 1e3");
    if (std::isinf(value) && text.find_first_of("iI") == std::string::npos) {
      refuse("is out of the range of a 32-bit float");
    }
    return value;
  }
  if (std::holds_alternative<std::string>(zero)) return text;
  refuse("is refused: list kinds have none, a missing list is empty");
  return zero;
}

namespace {

std::string ToPlain(const std::string& text) { return text; }
std::string ToPlain(const std::pair<std::string, std::string>& pair) {
  return pair.first + '=' + pair.second;
}
std::string ToPlain(auto number) {
  std::string text;
  AppendJson(text, number);
  return text;
}

}  // namespace

std::string ToLines(const Value& value) {
  return std::visit(
      []<class Kind>(const Kind& answer) {
        if constexpr (kIsList<Kind>) {
          std::string lines;
          for (const auto& element : answer) lines += ToPlain(element) + '\n';
          return lines;
        } else {
          return ToPlain(answer) + '\n';
        }
      },
      value);
}

std::string ToText(const Value& value) {
  std::string text;
  std::visit([&](const auto& answer) { AppendJson(text, answer); }, value);
  return text;
}

Json ToJson(const Value& value) {
  const auto* number = std::get_if<float>(&value);
  if (number != nullptr && !std::isfinite(*number)) {
    Fail("JSON has no " + ToPlain(*number) + "; ask without --json");
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
