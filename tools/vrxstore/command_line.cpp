#include "tools/vrxstore/command_line.h"

#include <CLI/CLI.hpp>

#include "store/questions.h"
#include "tools/command_line_end.h"
#include "vrx_build.h"

namespace vrxstore {
namespace {

void addTarget(CLI::App& command, Options& options) {
  command
      .add_option("TARGET", options.target,
                  "the store: a SQLite file (PATH or sqlite:PATH) or postgresql://…")
      ->required();
}

void addFormat(CLI::App& command, Options& options) {
  command.add_option("--format", options.format, "output format")
      ->check(CLI::IsMember({"table", "json"}));
}

}  // namespace

ParsedCommandLine parseCommandLine(int argc, char** argv) {
  ParsedCommandLine parsed;
  Options& options = parsed.options;
  CLI::App app("Keeps inventories of many machines as snapshots in SQLite or PostgreSQL.",
               "vrxstore");
  app.set_version_flag("--version", "vrxstore " VRX_VERSION " (commit " VRX_COMMIT ")");
  app.add_option("--schema", options.schema, "MOF file with the class definitions");
  app.require_subcommand(1);

  CLI::App* load =
      app.add_subcommand("load", "load inventories written by vrxhost (JSON or CIM-XML)");
  addTarget(*load, options);
  load->add_option("FILE", options.files, "inventory files; - for stdin")->required();

  CLI::App* diff = app.add_subcommand("diff", "what changed on a machine between two snapshots");
  addTarget(*diff, options);
  diff->add_option("MACHINE", options.machine, "the machine's name")->required();
  diff->add_option("FROM", options.from, "snapshot number (default: the one before TO)");
  diff->add_option("TO", options.to, "snapshot number (default: the newest)");
  addFormat(*diff, options);

  CLI::App* query = app.add_subcommand("query", "answer a named question:\n" + questionsUsage());
  addTarget(*query, options);
  query->add_option("NAME", options.question, "the question")->required();
  query->add_option("ARG", options.arguments, "its arguments");
  addFormat(*query, options);

  parsed.exitStatus = vrxtools::parseOrEnd(app, argc, argv, kExitUsage);
  if (parsed.exitStatus) return parsed;
  options.command = app.get_subcommands().front()->get_name();
  return parsed;
}

}  // namespace vrxstore
