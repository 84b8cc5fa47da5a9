#include "tools/vrxhost/command_line.h"
#include "tools/vrxhost/run.h"

int main(int argc, char** argv) {
  const vrxhost::ParsedCommandLine parsed = vrxhost::parseCommandLine(argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  return vrxhost::run(parsed.options);
}
