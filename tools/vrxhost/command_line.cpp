#include "tools/vrxhost/command_line.h"

#include <CLI/CLI.hpp>

#include "tools/command_line_end.h"
#include "tools/vrxhost/generator.h"

namespace vrxhost {

const std::vector<std::string>& defaultClasses() {
  static const std::vector<std::string> classes = {"QELTO_InstalledApplication",
                                                   "QELTO_InstalledFix",
                                                   "QELTO_OperatingSystem",
                                                   "QELTO_TimeZone",
                                                   "QELTO_PageFile",
                                                   "QELTO_SystemEnvironmentVariable",
                                                   "QELTO_UserEnvironmentVariable",
                                                   "QELTO_OSEnvironmentVariable",
                                                   "QELTO_Account",
                                                   "QELTO_AccountOnSystem",
                                                   "QELTO_CurrentAccountOnSystem",
                                                   "QELTO_OSComponent",
                                                   "QELTO_OSBaseComponent",
                                                   "QELTO_OSSubComponent"};
  return classes;
}

ParsedCommandLine parseCommandLine(int argc, char** argv) {
  ParsedCommandLine parsed;
  Options& options = parsed.options;
  CLI::App app("Inventories one Windows machine as CIM instances.", "vrxhost");
  app.set_version_flag("--version", kGenerator);
  app.add_option("--machine", options.machine,
                 "machine directory or disk image to inventory (Linux; default: the sample "
                 "machine)");
  app.add_option("--partition", options.partition,
                 "the Windows partition of a disk image, numbered as its partition table "
                 "numbers it (1 for the first)")
      ->check(CLI::Range(1u, 65535u));
  app.add_option("--user", options.user, "profile of an offline Windows volume or disk image");
  app.add_option("--now", options.now,
                 "the machine's present time (ISO 8601 with zone, or CIM date-time text)");
  app.add_option("--schema", options.schema, "MOF file with the class definitions");
  app.add_option("--plugin", options.plugin, "plug-in library to load");
  app.add_option("--format", options.format, "output format")
      ->check(CLI::IsMember({"json", "xml", "mof", "table"}));
  app.add_option("--output", options.output, "write the inventory to FILE instead of stdout");
  app.add_option("--store", options.store,
                 "write the inventory as one snapshot to a store: a SQLite file (PATH or "
                 "sqlite:PATH) or postgresql://…; prints nothing unless --output is given")
      ->type_name("TARGET");
  app.add_option("--log", options.log, "write the log lines to FILE");
  app.add_option("--log-level", options.logLevel, "highest level written to the log (0-4)")
      ->check(CLI::Range(0, 4));
  app.add_flag("-v", options.verbose,
               "one line per class on stderr: class, instances, ms; then, for a disk image, "
               "the bytes read");
  app.add_option("CLASS", options.classes, "classes to collect, in order");
  app.add_option("--export-registry", options.exportRegistry,
                 "write the machine's registry from KEY down as a regedit file, no inventory")
      ->type_name("KEY")
      ->check([](const std::string& key) { return key.empty() ? "KEY is empty" : ""; })
      ->excludes("--format", "CLASS", "--store");
  parsed.exitStatus = vrxtools::parseOrEnd(app, argc, argv, kExitUsage);
  if (parsed.exitStatus) return parsed;
  if (options.classes.empty()) options.classes = defaultClasses();
  return parsed;
}

}  // namespace vrxhost
