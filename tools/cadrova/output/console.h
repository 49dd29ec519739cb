// How the command speaks: what was asked for goes to standard output, all else is one line on
// standard error.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

// To begin with: a standard stream that is closed gets something in its place, so that no file
// that is opened later is taken for it. Writing to standard output then fails.
void OpenStandardStreams();

// One line on standard error, from "cadrova".
void Say(const std::string& message);

// The same, and the command ends with status 2; or with another.
[[noreturn]] void Fail(const std::string& message, int status = 2);

// All of `text` to standard output, or the command fails.
void Print(const std::string& text);

// What `act` prints to standard output, which doesn't get it.
std::string PrintedBy(const std::function<void()>& act);

// Nobody gets what `act` prints to standard output.
void Silently(const std::function<void()>& act);

// `text` in a colour, where a person reads it.
std::string Coloured(const std::string& text, const char* colour);
constexpr char kBold[] = "1", kRed[] = "31", kGreen[] = "32", kYellow[] = "33";

// How far long work is, on a terminal's last line, from the time when it has become long.
class Progress {
 public:
  explicit Progress(std::string work) : work_(std::move(work)) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void Show(std::size_t done, std::size_t all);

 private:
  using Clock = std::chrono::steady_clock;

  std::string work_;
  Clock::time_point next_ = Clock::now() + std::chrono::milliseconds(500);
  bool is_shown_ = false;
};
