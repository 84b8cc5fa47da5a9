// The optional components of Windows as its setup files list them, with
// their versions and installed states, as instances of QELTO_OSComponent;
// one more record stands for the backup program.
#pragma once

#include <string>
#include <vector>

#include "frame/get_info.h"

namespace installedapps_col {

class InfFile;

// One usable line of the section "Components" of sysoc.inf: a component
// family with its own INF file.
struct ComponentFileEntry {
  std::string infName;  // field 3
  std::string dllName;  // field 1
  std::string hidden;   // "true" when field 4 has text, else "false"
};

class OSComponentInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;

  int getCIMInstances() override;

  // One record per component of every family's INF, then the backup
  // program's, when its version can be found.
  FactList getInfo();
  // The Windows directory's "inf" folder; empty when the directory is not
  // known.
  std::string getINFDirectory();
  std::vector<ComponentFileEntry> getINFFileList();
  // 0 without a registry value for the component, else the value plus 1.
  int getInstalledState(std::string componentName);

  // The file's version text, empty when there is none; `description`
  // holds its FileDescription, if any.
  std::string getFileVersion(std::string path, std::string& description);
  // The version of the first file of that name along PATH that has one.
  std::string findDllInSysPath(std::string fileName, std::string& description);

 private:
  void addComponents(FactList& records, const std::string& infDirectory,
                     const ComponentFileEntry& entry);
  // The facts of one component; its section in `inf` has its name.
  FactMap componentRecord(const InfFile& inf, const std::string& name,
                          const ComponentFileEntry& entry, const std::string& infPath);
  // The DLL's version from system32\Setup, without and then with the
  // WOW64 redirection, else along PATH.
  std::string findComponentVersion(const std::string& dllName);
  void addBackupProgram(FactList& records);
};

}  // namespace installedapps_col
