// The commands, a file each.
#pragma once

#include <CLI/CLI.hpp>

void AddExplain(CLI::App& app);
void AddGet(CLI::App& app);
void AddTrace(CLI::App& app);
