// cadrova get: the value of one feature, and nothing else, on standard output.

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "commands/commands.h"
#include "commands/options.h"
#include "lookup/recording.h"
#include "output/console.h"
#include "output/json.h"

void AddGet(CLI::App& app) {
  CLI::App& get = *app.add_subcommand("get", "Print the value of one feature");
  const auto arguments = std::make_shared<QuestionArguments>(get);
  const auto json = std::make_shared<bool>(false);
  get.add_flag("--json", *json, "Print the value as one JSON value");
  get.footer("As: cadrova get carrier-region int calling.ring_seconds --region EU --carrier X1\n");
  get.callback([=] {
    const Question question = arguments->Take();
    const Hearing heard = Hear(question.ask);
    std::fwrite(heard.printed.data(), 1, heard.printed.size(), stderr);
    Print(*json ? ToLine(ToJson(heard.value)) : ToLines(heard.value));
    if (heard.chain.answered_by() == nullptr && !question.has_default) {
      Fail("no map holds " + question.key + " as " + question.kind() + "; see cadrova explain", 1);
    }
  });
}
