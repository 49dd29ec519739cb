#include "toml_precheck.h"

#include <algorithm>
#include <string>
#include <utility>

#include "utf8.h"

namespace cadrova::host {
namespace {

constexpr int kMaximumParts = 64;

bool IsBeyondAscii(char byte) { return (byte & 0x80) != 0; }

bool IsPartOfKey(char byte) {
  const char letter = static_cast<char>(byte | 0x20);
  return (letter >= 'a' && letter <= 'z') || (byte >= '0' && byte <= '9') || byte == '_' ||
         byte == '-' || byte == ' ' || byte == '\t';
}

// The offset of the end of the string whose opening quotes are at `at`. If the string is not
// closed, or contains a character that might crash toml++, the offset at which that is seen.
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
  // If one or two more quotes follow, they belong to the string.
  for (int more = 0; has_lines && more < 2 && toml.substr(at).starts_with(quote); ++more) ++at;
  return at;
}

// Whether each second byte at the beginning is NUL, as in UTF-16 that begins with ASCII.
bool ResemblesUtf16(std::string_view toml) {
  if (toml.starts_with("\xFF\xFE") || toml.starts_with("\xFE\xFF")) return true;
  if (toml.size() < 4) return false;
  const auto is_nul = [&](std::size_t at) { return toml[at] == '\0'; };
  return is_nul(0) == is_nul(2) && is_nul(1) == is_nul(3) && is_nul(0) != is_nul(1);
}

}  // namespace

Place PlaceOf(std::size_t offset, std::string_view toml) {
  const std::string_view before = toml.substr(0, offset);
  const std::string_view in_line = before.substr(before.rfind('\n') + 1);
  return {static_cast<int>(1 + std::ranges::count(before, '\n')),
          static_cast<int>(1 + CharacterCount(in_line))};
}

std::size_t OffsetOf(const Place& place, std::string_view toml) {
  std::size_t offset = 0;
  for (int line = 1; line < place.line; ++line) {
    offset = std::min(toml.find('\n', offset), toml.size() - 1) + 1;
  }
  for (int column = 1; column < place.column && offset < toml.size(); ++column) {
    do ++offset;
    while (offset < toml.size() && (toml[offset] & 0xC0) == 0x80);
  }
  return offset;
}

std::optional<Error> FindForeignBytes(std::string_view toml) {
  if (ResemblesUtf16(toml)) return Error{{}, {1, 1}, "UTF-16 text; save it as UTF-8", {}};
  const std::size_t nul = toml.find('\0'), invalid = FindInvalidUtf8(toml.substr(0, nul));
  const auto error_at = [&](std::size_t offset, std::string reason) {
    return Error{{}, PlaceOf(offset, toml), std::move(reason), {}};
  };
  if (nul != std::string_view::npos) {
    return error_at(std::min(invalid, nul), "binary data, not TOML: the file contains a NUL byte");
  }
  if (invalid == std::string_view::npos) return std::nullopt;
  return error_at(invalid, "not UTF-8 text from here on; save the file as UTF-8");
}

std::size_t EndOfKeyPart(std::string_view toml, std::size_t offset) {
  if (toml.substr(offset).starts_with('"') || toml.substr(offset).starts_with('\'')) {
    return EndOfString(toml, offset);
  }
  return std::min(toml.find_first_of(" \t.=", offset), toml.size());
}

TomlScan ScanToml(std::string_view toml) {
  TomlScan scan;
  std::string open;                   // the open brackets of values
  bool& in_value = scan.is_in_value;  // or else in a key or in the header of a table
  bool in_word = false;               // in a value without quotes, in which quotes have no meaning
  int dots = 0;                       // in the current key
  const auto stop_at = [&](std::size_t offset, std::string reason) {
    scan.error = Error{{}, PlaceOf(offset, toml), std::move(reason), {}};
    return std::move(scan);
  };
  for (std::size_t at = 0; at < toml.size();) {
    const char byte = toml[at];
    if (IsBeyondAscii(byte)) {
      return stop_at(at,
                     "a character beyond ASCII must be in quotes, and not directly after a "
                     "backslash that ends a line");
    }
    if (byte == '.' && !in_value && ++dots == kMaximumParts) {
      return stop_at(at, "a key of more than " + std::to_string(kMaximumParts) + " parts");
    }
    if (byte == '[' && !in_value && toml.find_first_not_of(" \t", scan.line) == at) {
      scan.headers.push_back(scan.line);
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
      scan.line = at;
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
  scan.is_in_brackets = !open.empty();
  return scan;
}

}  // namespace cadrova::host
