// A diagnostic line that the compiler checks, as it checks a `std::format_string`.
#pragma once

#include <string_view>

#include "lookup/kind.h"

namespace android::cadrova_cpp {

// Not constexpr. If the check below calls one of them, the compiler rejects the text and prints the
// name of the function.
void LineDoesNotEndAsItsKindRequires();
void LineHasAnotherConversion();

// Can be made only from a literal that fits the kind, so it is a safe format for `printf`.
template <class Value>
struct Line {
  consteval Line(const char* literal) : text(literal) {
    std::string_view rest = literal;
    if (!rest.ends_with(KindTraits<Value>::line_end)) LineDoesNotEndAsItsKindRequires();
    rest.remove_suffix(KindTraits<Value>::line_end.size());
    if (rest.find('%') != std::string_view::npos) LineHasAnotherConversion();
  }

  const char* text;
};

}  // namespace android::cadrova_cpp
