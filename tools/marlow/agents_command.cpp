#include "system/processes/process_detection.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

ExitCode run(const Arguments& arguments) {
  const Value::List agents = Utilities::runningAgentsInfo();
  const std::int32_t own = Utilities::marlowUserID();
  for (const Value& agent : agents) {
    const bool isForeign = agent.find("uid")->integerValue() != own;
    if (arguments.wantsJSON()) {
      Value::Dictionary fields = *agent.dictionary();
      fields.insert_or_assign("foreign", Value(isForeign));
      printJSON(std::move(fields));
    } else {
      printLine("process " + agent.find("pid")->description() + " of " + agent.find("username")->description() + " (" +
                agent.find("uid")->description() + ")" + (isForeign ? ", another user's" : ""));
    }
  }
  if (agents.empty() && !arguments.wantsJSON()) {
    printLine("No MarlowAgent runs.");
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kAgentsCommand = {
    .name = "agents",
    .summary = "list the agents that run, and whose they are",
    .usage = "[--json]",
    .help = "Prints the process number and the user of each MarlowAgent that runs.\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
