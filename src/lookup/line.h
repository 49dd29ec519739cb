// The diagnostic lines that lookups print, checked by the compiler.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace android {

// How a line of each value kind ends: scalars and strings with their own conversion for `printf`,
// and lists, which print no value, as `puts` takes them.
template <class Value>
inline constexpr std::string_view kLineEnd = "! ";
template <>
inline constexpr std::string_view kLineEnd<bool> = " : %d \n";
template <>
inline constexpr std::string_view kLineEnd<int> = " : %d \n";
template <>
inline constexpr std::string_view kLineEnd<float> = " : %f \n";
template <>
inline constexpr std::string_view kLineEnd<std::string> = " : %s \n";

// Not constant expressions, and named after what keeps a text from compiling.
void LineIsTooLong();
void LineDoesNotEndAsItsKindRequires();
void LineHasAnotherConversion();

// One line. A table of them holds the bytes themselves, as pointers would have to be relocated in
// every process, and starts each where `printf` and `puts` scan it in the fewest steps.
template <class Value, std::size_t Size>
struct alignas(32) Line {
  template <std::size_t LiteralSize>
  consteval Line(const char (&literal)[LiteralSize]) {
    if (LiteralSize > Size) LineIsTooLong();
    const std::string_view line(literal, LiteralSize - 1);
    if (!line.ends_with(kLineEnd<Value>)) LineDoesNotEndAsItsKindRequires();
    const std::string_view words = line.substr(0, line.size() - kLineEnd<Value>.size());
    if (words.find('%') != std::string_view::npos) LineHasAnotherConversion();
    line.copy(text, line.size());
  }

  char text[Size]{};
};

}  // namespace android
