// How the stand-ins read their files, and how they end a process that can't be answered.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "cadrova/host.h"

namespace cadrova::host {

// The whole file at `path`, or why it can't be read to its end.
std::variant<std::string, Mistake> ReadFile(const std::string& path);

// `text` with a `?` for every byte that doesn't print, so that a mistake stays one line.
std::string Printable(std::string_view text);

// Ends the process, after all that it has printed: nobody is answered from half a file.
[[noreturn]] void Stop(const Mistake& mistake);

}  // namespace cadrova::host
