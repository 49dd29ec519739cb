// Standard output and standard error.
#pragma once

#include <string>

namespace cadrova::tools {

// Opens /dev/null in place of each standard stream that is closed, so that no file that is opened
// later gets its number. Writing to standard output then fails.
void OpenStandardStreams();

// One line on standard error.
void PrintError(const std::string& line);

// All of `text` on standard output; throws a Failure if that is impossible.
void Print(const std::string& text);

constexpr char kBold[] = "1", kRed[] = "31", kGreen[] = "32", kYellow[] = "33";

// `text` in the colour, if standard output is a terminal and NO_COLOR is not set.
std::string Colored(const std::string& text, const char* color);

}  // namespace cadrova::tools
