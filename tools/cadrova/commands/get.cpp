#include <unistd.h>

#include <cstdio>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "lookup/recording.h"
#include "output/console.h"
#include "output/json.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class Get : public Command {
 public:
  void DeclareOptions(Options& options) override {
    query_.DeclareOptions(options);
    format_.DeclareOptions(options);
  }

  int Run() override {
    const bool is_json = format_.Choose() == "json";
    const Query query = query_.Apply();
    const Recording recording = Record(query);
    const bool is_missing = SourceOf(recording.chain, recording.value, query) == nullptr;
    const std::string printed = DataFor(STDERR_FILENO, recording.printed);
    std::fwrite(printed.data(), 1, printed.size(), stderr);
    query_.WarnOfCodes(recording);
    Print(is_json ? ToJson(recording.value) + '\n'
                  : DataFor(STDOUT_FILENO, ToLines(recording.value)));
    if (!is_missing || query.has_default) return kSuccess;
    PrintError("cadrova: no map contains " + DisplayName(query.key) + " as " +
               ToString(query.kind) + "; see cadrova explain");
    return kNegative;
  }

 private:
  QueryOptions query_;
  FormatOption format_{{{"text", ""}, {"json", "Print the value as JSON"}}};
};

}  // namespace

std::unique_ptr<Command> MakeGet() { return std::make_unique<Get>(); }

}  // namespace cadrova::tools
