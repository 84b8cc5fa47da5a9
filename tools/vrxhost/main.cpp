#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "tools/vrxhost/command_line.h"
#include "tools/vrxhost/run.h"

int main(int argc, char** argv) {
  const vrxhost::ParsedCommandLine parsed = vrxhost::parseCommandLine(argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  const int status = vrxhost::run(parsed.options);
  // The machine that was read fills much of a large run's memory. Once everything is written,
  // the system takes it back at once, where freeing it piece by piece costs a good part of a
  // second.
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
  std::_Exit(status);
}
