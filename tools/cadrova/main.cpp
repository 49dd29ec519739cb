// The cadrova command: shows how a device is customized, and why.

#include "commands/command_line.h"
#include "failure.h"
#include "output/console.h"

int main(int argc, char** argv) {
  using namespace cadrova::tools;
  OpenStandardStreams();
  try {
    return RunCommandLine(argc, argv);
  } catch (const Failure& failure) {
    PrintError(failure.what());
    return failure.status();
  }
}
