// The commands, a file each.
#pragma once

namespace CLI {
class App;
}

void AddExplain(CLI::App& app);
void AddGet(CLI::App& app);
void AddList(CLI::App& app);
void AddMatrix(CLI::App& app);
void AddDiff(CLI::App& app);
void AddCheck(CLI::App& app);
void AddTrace(CLI::App& app);
