// Programs as their users run them: arguments in; standard output, standard error and exit status
// out.
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

struct Outcome {
  std::string out, err;
  int status;  // as a shell has it: 128 and the signal, where one has ended it
};

// Runs `words` with `settings`, NAME=value each. Standard output and standard error go to files in
// our folder; or to those that are named, and are "" then.
inline Outcome RunProgram(const Words& words, const Words& settings = {}, std::string out = "",
                          std::string err = "") {
  Words all = {"env", "-u", "CADROVA_HOST_PROPS"};
  all.insert(all.end(), settings.begin(), settings.end());
  all.insert(all.end(), words.begin(), words.end());
  std::vector<char*> arguments;
  for (std::string& word : all) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const bool reads_out = out.empty(), reads_err = err.empty();
  if (reads_out) out = TemporaryFile("out", "");
  if (reads_err) err = TemporaryFile("err", "");
  const pid_t child = fork();
  if (child == 0) {
    const bool redirected = dup2(open(out.c_str(), O_WRONLY | O_APPEND), STDOUT_FILENO) >= 0 &&
                            dup2(open(err.c_str(), O_WRONLY | O_APPEND), STDERR_FILENO) >= 0;
    if (redirected) execvp("env", arguments.data());
    _exit(126);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {reads_out ? FileContents(out) : "", reads_err ? FileContents(err) : "",
          WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)};
}

inline void Expect(const Outcome& outcome, const std::string& out, const std::string& err,
                   int status = 0) {
  EXPECT_EQ(outcome.out, out);
  EXPECT_EQ(outcome.err, err);
  EXPECT_EQ(outcome.status, status) << outcome.err;
}
