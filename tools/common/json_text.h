// Values, and blocks of the core's, as text in one line: as JSON writes them, and where JSON can't,
// a float as inf or nan and any other byte as it stands.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "parser_core.h"

namespace cadrova::tools {

// Blocks as the core answers with them, only looked at.
struct StringArrayBlock {
  const char* const* strings;
};
struct IntArrayBlock {
  const std::int32_t* numbers;
};
struct PairArrayBlock {
  const char* const* strings;
};

inline void AppendJson(std::string& text, std::string_view string) {
  constexpr char kDigits[] = "0123456789abcdef";
  text += '"';
  std::size_t plain = 0;  // bytes in front that stand for themselves
  while (plain < string.size()) {
    const auto byte = static_cast<unsigned char>(string[plain]);
    const bool is_control = byte < ' ' || byte == 0x7F;
    if (!is_control && byte != '"' && byte != '\\') {
      ++plain;
      continue;
    }
    text += string.substr(0, plain);
    text += '\\';
    if (is_control) {
      text += {'u', '0', '0', kDigits[byte >> 4U], kDigits[byte & 15U]};
    } else {
      text += string[plain];
    }
    string.remove_prefix(plain + 1);
    plain = 0;
  }
  text += string;
  text += '"';
}
inline void AppendJson(std::string& text, const std::string& string) {
  AppendJson(text, std::string_view(string));
}
inline void AppendJson(std::string& text, const char* string) {
  AppendJson(text, std::string_view(string));
}

// Decimal; a float in the shortest form that reads back to the same float.
template <class Number>
  requires std::is_arithmetic_v<Number>
void AppendJson(std::string& text, Number number) {
  if constexpr (std::is_same_v<Number, bool>) {
    text += number ? "true" : "false";
  } else {
    char digits[32];
    text.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
  }
}

inline void AppendJson(std::string& text, cadrova_core_bool answer) {
  AppendJson(text, cadrova::core::IsTrue(answer));
}

template <class First, class Second>
void AppendJson(std::string& text, const std::pair<First, Second>& pair) {
  text += '[';
  AppendJson(text, pair.first);
  text += ',';
  AppendJson(text, pair.second);
  text += ']';
}

// Elements between brackets, with commas between them.
class Brackets {
 public:
  explicit Brackets(std::string& text) : text_(text) { text_ += '['; }
  Brackets(const Brackets&) = delete;
  Brackets& operator=(const Brackets&) = delete;
  ~Brackets() { text_ += ']'; }
  void Add(const auto& element) {
    if (!std::exchange(is_first_, false)) text_ += ',';
    AppendJson(text_, element);
  }

 private:
  std::string& text_;
  bool is_first_ = true;
};

template <class Element>
void AppendJson(std::string& text, const std::vector<Element>& list) {
  Brackets brackets(text);
  for (const Element& element : list) brackets.Add(element);
}

inline void AppendJson(std::string& text, StringArrayBlock block) {
  Brackets brackets(text);
  if (block.strings == nullptr) return;
  for (const auto* slot = block.strings; *slot != nullptr; ++slot) brackets.Add(*slot);
}

inline void AppendJson(std::string& text, IntArrayBlock block) {
  Brackets brackets(text);
  const std::int32_t count = block.numbers == nullptr ? 0 : block.numbers[0];
  for (std::int32_t i = 0; i < count; ++i) brackets.Add(block.numbers[1 + i]);
}

inline void AppendJson(std::string& text, PairArrayBlock block) {
  Brackets brackets(text);
  if (block.strings == nullptr) return;
  // After a NULL key the slot for its value may not exist.
  for (const auto* slot = block.strings; slot[0] != nullptr && slot[1] != nullptr; slot += 2) {
    brackets.Add(std::pair(slot[0], slot[1]));
  }
}

// function("EU", "ring.seconds", 3)
void AppendCall(std::string& text, const char* function, const auto&... arguments) {
  text += function;
  const char* before = "(";
  ((text += std::exchange(before, ", "), AppendJson(text, arguments)), ...);
  text += ')';
}

// The name of a map or a code, as it stands where that can't be taken for anything else.
inline void AppendName(std::string& text, const std::string& name) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-";
  if (!name.empty() && name.find_first_not_of(kPlain) == std::string::npos) {
    text += name;
  } else {
    AppendJson(text, name);
  }
}

inline std::string Named(const std::string& name) {
  std::string text;
  AppendName(text, name);
  return text;
}

}  // namespace cadrova::tools
