#include <unistd.h>

#include <cstdio>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "lookup/query.h"
#include "lookup/recording.h"
#include "output/console.h"
#include "output/json.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class Get : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRequired("FAMILY", family_, FamilyNames(), ValueType::kFamily);
    options.AddRequired("KIND", kind_, KindNames(), ValueType::kKind);
    options.AddRequired("KEY", key_, "Key of the feature", ValueType::kKey);
    options.Add("DEFAULT", default_, "",
                "Result for a missing item (default: false, 0, 0 or \"\")");
    device_.DeclareOptions(options);
    sim_.DeclareOptions(options);
    format_.DeclareOptions(options);
  }

  int Run() override {
    const bool is_json = format_.Choose() == "json";
    const Query query = MakeQuery(family_, kind_, key_, default_);
    device_.Apply();
    sim_.Apply();
    const Recording recording = Record(query);
    const bool is_missing = SourceOf(recording.chain, recording.value, query) == nullptr;
    const std::string printed = DataFor(STDERR_FILENO, recording.printed);
    std::fwrite(printed.data(), 1, printed.size(), stderr);
    device_.WarnOfCodes(recording);
    Print(is_json ? ToJson(recording.value) + '\n'
                  : DataFor(STDOUT_FILENO, ToLines(recording.value)));
    if (!is_missing || query.has_default) return kSuccess;
    PrintError("cadrova: no map contains " + DisplayName(query.key) + " as " +
               ToString(query.kind) + "; see cadrova explain");
    return kNegative;
  }

 private:
  std::string family_, kind_, key_;
  std::optional<std::string> default_;
  DeviceOptions device_;
  SimOption sim_;
  FormatOption format_{{{"text", ""}, {"json", "Print the value as JSON"}}};
};

}  // namespace

std::unique_ptr<Command> MakeGet() { return std::make_unique<Get>(); }

}  // namespace cadrova::tools
