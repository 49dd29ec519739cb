#include "lookup/query.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "failure.h"

namespace cadrova::tools {
namespace {

class DefaultParser {
 public:
  explicit DefaultParser(const std::string& text) : text_(text) {}

  Value Parse(Kind kind) const {
    switch (kind) {
      case Kind::kBool:
        if (text_ != "true" && text_ != "false") Refuse("is not a bool; use true or false");
        return text_ == "true";
      case Kind::kInt:
        return ParseInt();
      case Kind::kFloat:
        return ParseFloat();
      case Kind::kString:
        return text_;
      default:
        Refuse("is refused: list kinds take no default; a missing list is empty");
    }
  }

 private:
  [[noreturn]] void Refuse(const std::string& why) const {
    throw Failure("default '" + text_ + "' " + why);
  }

  int ParseInt() const {
    int value = 0;
    const char* const end = text_.data() + text_.size();
    const auto [rest, error] = std::from_chars(text_.data(), end, value);
    if (error == std::errc::result_out_of_range) Refuse("is out of the range of a 32-bit int");
    if (error != std::errc() || rest != end) Refuse("is not an int; use decimal digits");
    return value;
  }

  float ParseFloat() const {
    char* rest = nullptr;
    const float value = std::strtof(text_.c_str(), &rest);
    const bool has_blank = text_.empty() || std::isspace(static_cast<unsigned char>(text_[0])) != 0;
    if (has_blank || rest != text_.data() + text_.size()) {
      Refuse("is not a float; write it like 0.5 or 1e3");
    }
    if (std::isinf(value) && text_.find_first_of("iI") == std::string::npos) {
      Refuse("is out of the range of a 32-bit float");
    }
    return value;
  }

  const std::string& text_;
};

}  // namespace

Query MakeQuery(const std::string& family_name, const std::string& kind_name,
                const std::string& key, const std::optional<std::string>& default_value) {
  const Family& family = FindFamily(family_name);
  const Kind kind = FindKind(kind_name);
  if (!family.Has(kind)) {
    throw Failure("the " + family_name + " family has no " + kind_name +
                  " lookup; use carrier-region");
  }
  Query query = MakeQuery(family, kind, key);
  if (!default_value) return query;
  query.default_value = DefaultParser(*default_value).Parse(kind);
  query.has_default = true;
  if (!family.Get(kind).takes_default) {
    throw Failure("the " + family_name + " family takes no default for a " + kind_name +
                  "; a missing one is empty");
  }
  return query;
}

Query MakeQuery(const Family& family, Kind kind, const std::string& key) {
  return {&family, kind, key, ZeroOf(kind)};
}

}  // namespace cadrova::tools
