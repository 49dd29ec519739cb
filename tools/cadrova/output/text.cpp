#include "output/text.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "common/json_text.h"
#include "output/console.h"

using cadrova::tools::AppendJson;
using cadrova::tools::kIsList;

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
