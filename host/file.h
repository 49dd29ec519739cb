// How the fake core and the fake property store read files and report errors in them.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::host {

// The contents of the file at `path`, or why it can't be read.
std::variant<std::string, Error> ReadFile(const std::string& path);

// The rest of `stream`, which is called `name` in the error.
std::variant<std::string, Error> ReadStream(FILE* stream, const std::string& name);

// `text` with an escape such as \u001b for each character that may change what a terminal shows
// around it, so that a message is one line.
std::string Printable(std::string_view text);

// The first of `errors`, with the number of the others in its reason.
Error FirstOf(const std::vector<Error>& errors);

// Flushes standard output, prints the error to standard error, and ends the process with status 2.
// A fake does this if it can't read its file, because its interface has no other way to report
// errors.
[[noreturn]] void ExitWith(const Error& error);

}  // namespace cadrova::host
