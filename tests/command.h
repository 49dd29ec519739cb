// The cadrova command as its users run it.
#pragma once

#include <sstream>
#include <string>

#include "files.h"
#include "run.h"

// What is asked where a test names no other data.
inline const std::string kData =
    TemporaryFile("data.toml", "[DEFAULT]" + kItems + "[\"\"]" + kItems + R"(
[DEFAULT.a]
b.c = 1
"b.d" = 2
[EU]
float = 0.5
["COTA_X=1"]
float = 2.0
["COTA_X=1_EU"]
float = 1.0
)");

// `line` has a bar between words; "cadrova" is the command again.
inline Outcome Cadrova(const std::string& line,
                       const std::string& setting = "CADROVA_HOST_DATA=" + kData,
                       const std::string& out = "") {
  const Words command = {CADROVA_COMMAND};
  Words words = command;
  std::istringstream rest(line + '|');
  for (std::string word; std::getline(rest, word, '|');) {
    words.push_back(word);
    if (word == "cadrova")
      words.insert(words.erase(words.end() - 1), command.begin(), command.end());
  }
  return RunProgram(words, {setting}, out);
}
