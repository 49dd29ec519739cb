#include "toml_precheck.h"

#include <algorithm>
#include <string>
#include <utility>

namespace cadrova::host {
namespace {

constexpr int kMostParts = 64;

Mistake At(std::string_view toml, std::size_t offset, std::string reason) {
  const std::string_view before = toml.substr(0, offset);
  const std::string_view in_line = before.substr(before.rfind('\n') + 1);
  const auto begins_letter = [](char byte) { return (byte & 0xC0) != 0x80; };
  return {"", static_cast<int>(1 + std::ranges::count(before, '\n')),
          static_cast<int>(1 + std::ranges::count_if(in_line, begins_letter)), std::move(reason)};
}

bool IsBeyondAscii(char byte) { return (byte & 0x80) != 0; }

bool IsPartOfKey(char byte) {
  const char letter = static_cast<char>(byte | 0x20);
  return (letter >= 'a' && letter <= 'z') || (byte >= '0' && byte <= '9') || byte == '_' ||
         byte == '-' || byte == ' ' || byte == '\t';
}

// Behind the string whose quotes open at `at`; or where it breaks off, or toml++ must not go on.
std::size_t EndOfString(std::string_view toml, std::size_t at) {
  const char quote = toml[at];
  const bool has_lines = toml.substr(at).starts_with(std::string(3, quote));
  const std::string_view quotes = toml.substr(at, has_lines ? 3 : 1);
  at += quotes.size();
  while (!toml.substr(at).starts_with(quotes)) {
    if (at == toml.size() || (toml[at] == '\n' && !has_lines)) return at;
    if (toml[at++] != '\\' || quote == '\'') continue;
    const std::size_t escaped = at;
    if (has_lines) at = std::min(toml.find_first_not_of(" \t\r\n", at), toml.size());
    if (at == toml.size() || (has_lines && IsBeyondAscii(toml[at]))) return at;
    if (at == escaped) ++at;
  }
  at += quotes.size();
  // The last three quotes close it; up to two before them are its own.
  for (int own = 0; has_lines && own < 2 && toml.substr(at).starts_with(quote); ++own) ++at;
  return at;
}

}  // namespace

std::optional<Mistake> WhatTomlCannotTake(std::string_view toml) {
  std::string open;       // the brackets of values
  bool in_value = false;  // rather than in a key or a table's header
  bool in_word = false;   // in a value without quotes, of which these would be letters
  int dots = 0;           // of a key
  for (std::size_t at = toml.starts_with("\xEF\xBB\xBF") ? 3 : 0; at < toml.size();) {
    const char byte = toml[at];
    if (IsBeyondAscii(byte)) {
      return At(toml, at,
                "a letter beyond ASCII must stand in quotes, and not right behind a backslash that "
                "ends a line");
    }
    if (byte == '.' && !in_value && ++dots == kMostParts) {
      return At(toml, at, "a key of more than " + std::to_string(kMostParts) + " parts");
    }
    if (byte == '#') {
      at = std::min(toml.find('\n', at), toml.size());
      continue;
    }
    if ((byte == '"' || byte == '\'') && !in_word) {
      at = EndOfString(toml, at);
      continue;
    }
    ++at;
    constexpr std::string_view kBlanks = " \t\r\n", kEnds = ",]}";
    const bool is_blank = kBlanks.find(byte) != std::string_view::npos;
    in_word = in_word && !is_blank && kEnds.find(byte) == std::string_view::npos;
    if (in_word) continue;
    if (byte != '.' && !IsPartOfKey(byte)) dots = 0;
    if (open.empty() && byte == '\n') {
      in_value = false;
    } else if (!open.empty() && byte == ',') {
      in_value = open.back() == '[';
    } else if (!open.empty() && (byte == ']' || byte == '}')) {
      open.pop_back();
      in_value = true;
    } else if (in_value && (byte == '[' || byte == '{')) {
      open += byte;
      in_value = byte == '[';
    } else if (in_value) {
      in_word = !is_blank;
    } else {
      in_value = byte == '=';
    }
  }
  return std::nullopt;
}

}  // namespace cadrova::host
