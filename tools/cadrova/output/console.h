// Standard output and standard error.
#pragma once

#include <string>

namespace cadrova::tools {

// Opens /dev/null for each standard stream that is closed, so that no other file gets its number.
// Writing to this standard output fails.
void OpenStandardStreams();

// Prints one line to standard error.
void PrintError(const std::string& line);

// Prints `text` to standard output. Throws a Failure if it can't be written.
void Print(const std::string& text);

constexpr char kBold[] = "1", kRed[] = "31", kGreen[] = "32", kYellow[] = "33";

// `text` in the colour, if standard output is a terminal and NO_COLOR is not set.
std::string Colored(const std::string& text, const char* color);

}  // namespace cadrova::tools
