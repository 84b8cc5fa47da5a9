// Commands of a described machine: what the command printed there is part
// of the machine's description.
#include <cctype>

#include "host/os_specific.h"
#include "winapi/machine/machine.h"

namespace NZARVEK20 {

std::string TOSSpecific::SpawnProcess(std::string commandLine, int) {
  std::string program = commandLine.substr(0, commandLine.find(' '));
  for (char& c : program) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const std::string suffix = ".exe";
  if (program.size() > suffix.size() &&
      program.compare(program.size() - suffix.size(), suffix.size(), suffix) == 0)
    program.resize(program.size() - suffix.size());
  return winapi::currentMachine().command(program);
}

}  // namespace NZARVEK20
