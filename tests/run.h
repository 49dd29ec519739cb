// Runs programs and returns their standard output, standard error and exit status.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "files.h"

using Words = std::vector<std::string>;

inline Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

struct ProgramResult {
  std::string out, err;
  int status;  // the exit status, or 128 + the signal that ended the program
};

// Runs `words` with the environment variables `settings`, each NAME=value. If `out` names a file,
// standard output goes there and is "" in the result.
inline ProgramResult RunProgram(const Words& words, const Words& settings = {},
                                std::string out = "") {
  Words all = Words{"env", "-u", "CADROVA_HOST_PROPS"} + settings + words;
  std::vector<char*> arguments;
  for (std::string& word : all) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const std::string err = TemporaryFile("err", "");
  const bool reads_out = out.empty();
  if (reads_out) out = TemporaryFile("out", "");
  const pid_t child = fork();
  if (child == 0) {
    const bool redirected = dup2(open(out.c_str(), O_WRONLY | O_APPEND), STDOUT_FILENO) >= 0 &&
                            dup2(open(err.c_str(), O_WRONLY | O_APPEND), STDERR_FILENO) >= 0;
    if (redirected) execvp("env", arguments.data());
    _exit(126);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {reads_out ? FileContents(out) : "", FileContents(err),
          WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)};
}

inline void Expect(const ProgramResult& result, const std::string& out, const std::string& err,
                   int status = 0) {
  EXPECT_EQ(result.out, out);
  EXPECT_EQ(result.err, err);
  EXPECT_EQ(result.status, status) << result.err;
}
