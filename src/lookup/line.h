// A diagnostic line, checked by the compiler as `std::format_string` is.
#pragma once

#include <string_view>

#include "lookup/kind.h"

namespace android::cadrova_cpp {

// Not constant expressions, and named after what keeps a text from compiling.
void LineDoesNotEndAsItsKindRequires();
void LineHasAnotherConversion();

// Takes a literal alone, and so is a format that `printf` can be trusted with.
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
