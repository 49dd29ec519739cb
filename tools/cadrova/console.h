// How the command speaks: what was asked for goes to standard output, all else is one line on
// standard error.
#pragma once

#include <functional>
#include <string>

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
