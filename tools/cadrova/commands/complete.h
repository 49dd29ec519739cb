// The hidden command __complete, which the completions of the shells call.
#pragma once

#include <string>
#include <vector>

#include "commands/command_line.h"

namespace cadrova::tools {

// Prints what the last of `words` may become, one candidate per line, and returns the exit status.
// The words are those after "cadrova", as they were typed: with quotes and backslashes, which the
// candidates do not have. The last line says what the shell completes: ":words" (the candidates),
// ":files" or ":programs". After a candidate that ends in "/" or ".", more follows. Prints no
// errors.
int Complete(const std::vector<std::string>& words);

// What the word may become, except names of files and programs. Throws a Failure if the values are
// in the fleet file, and it has an error.
std::vector<std::string> Candidates(IncompleteWord word);

}  // namespace cadrova::tools
