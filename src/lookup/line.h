// A diagnostic line that the compiler checks, as it checks a `std::format_string`.
#pragma once

#include <string_view>

#include "lookup/kind.h"

namespace android::cadrova_cpp {

// A call of these is not a constant expression, so the compiler rejects the text and names the
// reason.
void LineDoesNotEndAsItsKindRequires();
void LineHasAnotherConversion();

// Can be made only from a literal that fits the kind, so it is a safe format for `printf`.
template <class Value>
struct Line {
  consteval Line(const char* literal) : text(literal) {
    std::string_view words = literal;
    if (!words.ends_with(KindTraits<Value>::line_end)) LineDoesNotEndAsItsKindRequires();
    words.remove_suffix(KindTraits<Value>::line_end.size());
    if (words.find('%') != std::string_view::npos) LineHasAnotherConversion();
  }

  const char* text;
};

}  // namespace android::cadrova_cpp
