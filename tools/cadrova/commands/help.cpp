#include "commands/command.h"
#include "common/text.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

class Help : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("COMMAND", command_, "", Join(CommandNames()), CommandNames());
  }

  int Run() override {
    Print(HelpText(command_.value_or("")));
    return kSuccess;
  }

 private:
  std::optional<std::string> command_;
};

}  // namespace

std::unique_ptr<Command> MakeHelp() { return std::make_unique<Help>(); }

}  // namespace cadrova::tools
