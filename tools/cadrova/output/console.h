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

// `data` for a stream such as STDOUT_FILENO. On a terminal, characters that may change what it
// shows are escaped, except newlines and tabs. Elsewhere `data` is unchanged.
std::string DataFor(int stream, const std::string& data);

constexpr char kBold[] = "1", kRed[] = "31", kGreen[] = "32", kYellow[] = "33";

// When `Colored` colors: "auto", "always" or "never". Throws a Failure for any other word.
void ChooseColor(const std::string& when);

// Whether `Colored` colors. With "auto", only if standard output is a terminal that has colors, and
// NO_COLOR is not set.
bool HasColor();

// `text` in the color, which may be "" for none.
std::string Colored(const std::string& text, const std::string& color);

// The number of columns of the terminal that standard output is, or a huge number if it is none.
// The environment variable COLUMNS takes precedence over the size of the terminal.
std::size_t TerminalWidth();

}  // namespace cadrova::tools
