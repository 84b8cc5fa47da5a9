#include "bench/machine_generator.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace bench {

namespace {

constexpr const char* kHeader = "Windows Registry Editor Version 5.00\r\n";
constexpr const char* kMachine = "HKEY_LOCAL_MACHINE\\SOFTWARE\\";
constexpr const char* kUninstall = "Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char* kWow64 = "WOW6432Node\\";
constexpr const char* kProducts = "Classes\\Installer\\Products";
constexpr std::size_t kKeysPerFile = 20000;  // keeps each file far below the loader's limit
constexpr std::size_t kComponentsPerInf = 25;
constexpr std::uint32_t kFirstFixNumber = 100000;

const char* const kVendors[] = {"Contoso Ltd.",    "Fabrikam, Inc.", "Northwind Traders",
                                "Adventure Works", "Tailspin Toys",  "Litware \"Labs\""};
const char* const kWords[] = {"Studio", "Runtime", "Viewer", "Agent",  "Toolkit", "Suite",
                              "Driver", "Player",  "Server", "Client", "Editor",  "Backup"};

// A small deterministic generator (splitmix64): the standard distributions differ by library.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }
  std::string hex(std::size_t digits) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < digits; ++i) text += kDigits[below(16)];
    return text;
  }

 private:
  std::uint64_t state_;
};

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

class RegWriter {
 public:
  void key(const std::string& path) { text_ += "\r\n[" + path + "]\r\n"; }
  void text(const std::string& name, const std::string& value) {
    text_ += quoted(name) + "=" + quoted(value) + "\r\n";
  }
  void dword(const std::string& name, std::uint32_t value) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", value);
    text_ += quoted(name) + "=dword:" + digits + "\r\n";
  }
  std::string take() { return std::string(kHeader) + std::move(text_); }

 private:
  std::string text_;
};

std::string fixId(std::size_t index) { return "KB" + std::to_string(kFirstFixNumber + index); }

std::string guid(Random& random) {
  return "{" + random.hex(8) + "-" + random.hex(4) + "-" + random.hex(4) + "-" + random.hex(4) +
         "-" + random.hex(12) + "}";
}

std::string installDate(Random& random) {
  return std::to_string(2015 + random.below(12)) + "0" + std::to_string(1 + random.below(9)) +
         std::to_string(10 + random.below(18));
}

std::string productName(std::size_t index) {
  return std::string(kWords[index * 7 % 12]) + " " + kWords[index / 12 % 12] + " Product " +
         std::to_string(index);
}

// The name of application `index`: mostly new, some the same as an earlier one (the same product
// in a second place), some the update of a hot fix, which the collector leaves out.
std::string applicationName(Random& random, std::size_t index, const MachineSize& size) {
  if (index % 20 == 7 && index > 20) return productName(index - 21);
  if (index % 50 == 3 && size.hotfixes > 0)
    return "Security Update for Windows (" + fixId(random.below(size.hotfixes)) + ")";
  return productName(index);
}

void uninstallEntry(RegWriter& reg, Random& random, std::size_t index, const MachineSize& size,
                    const std::string& place) {
  reg.key(place + "\\" + (index % 3 ? guid(random) : "App" + std::to_string(index)));
  // A parent key: the entry of a suite, without a name of its own.
  if (index % 33 == 5) {
    reg.text("ParentKeyName", "OperatingSystem");
    reg.dword("NoRemove", 1);
    return;
  }
  reg.text("DisplayName", applicationName(random, index, size));
  if (index % 4 == 0) {
    reg.dword("VersionMajor", static_cast<std::uint32_t>(random.below(20)));
    reg.dword("VersionMinor", static_cast<std::uint32_t>(random.below(100)));
  } else {
    reg.text("DisplayVersion", std::to_string(random.below(20)) + "." +
                                   std::to_string(random.below(100)) + "." +
                                   std::to_string(random.below(10000)));
  }
  reg.text("Publisher", kVendors[random.below(6)]);
  reg.text("InstallDate", installDate(random));
  reg.text("InstallLocation", "C:\\Program Files\\Product " + std::to_string(index) + "\\");
  reg.text("UninstallString", "MsiExec.exe /X" + guid(random));
  reg.dword("EstimatedSize", static_cast<std::uint32_t>(random.below(1 << 20)));
  reg.dword("NoModify", 1);
  if (index % 25 == 11) reg.dword("SystemComponent", 1);
}

void installerProduct(RegWriter& reg, Random& random, std::size_t index, const MachineSize& size) {
  reg.key(std::string(kMachine) + kProducts + "\\" + random.hex(32));
  reg.text("ProductName", applicationName(random, index, size));
  reg.dword("Version", static_cast<std::uint32_t>(random.below(16) << 24 | random.below(256) << 16 |
                                                  random.below(9999)));
  reg.text("PackageCode", random.hex(32));
  reg.dword("Language", 1033);
  reg.dword("AdvertiseFlags", 388);
}

// Applications `first` .. `last` - 1: six in ten under Uninstall, a quarter under the WOW64
// Uninstall key, the rest Installer products.
std::string applicationsRegText(const MachineSize& size, std::size_t first, std::size_t last) {
  Random random(size.seed * 7919 + first);
  RegWriter reg;
  for (std::size_t index = first; index < last; ++index) {
    std::size_t place = index % 20;
    if (place < 12)
      uninstallEntry(reg, random, index, size, std::string(kMachine) + kUninstall);
    else if (place < 17)
      uninstallEntry(reg, random, index, size, std::string(kMachine) + kWow64 + kUninstall);
    else
      installerProduct(reg, random, index, size);
  }
  return reg.take();
}

std::string hotfixRegText(const MachineSize& size) {
  RegWriter reg;
  for (std::size_t index = 0; index < size.hotfixes; ++index) {
    reg.key(std::string(kMachine) + "Microsoft\\Windows NT\\CurrentVersion\\HotFix\\" +
            fixId(index));
    reg.dword("Installed", 1);
    reg.text("Comments", "Windows Update " + fixId(index));
  }
  return reg.take();
}

// Fixes under Updates\<product>\<service pack>\<id>; every third lists its files in a sub-key.
std::string updatesRegText(const MachineSize& size) {
  Random random(size.seed * 104729);
  RegWriter reg;
  for (std::size_t index = 0; index < size.fixes; ++index) {
    std::string key = std::string(kMachine) + "Microsoft\\Updates\\Windows Server 2003\\SP" +
                      std::to_string(1 + index % 3) + "\\" + fixId(size.hotfixes + index);
    reg.key(key);
    reg.text("Description", "Update for Windows (" + fixId(size.hotfixes + index) + ")");
    reg.text("InstalledBy", "Administrator");
    reg.text("InstalledDate", std::to_string(1 + random.below(12)) + "/" +
                                  std::to_string(1 + random.below(28)) + "/2024");
    reg.text("Type", "Update");
    if (index % 3 == 0) {
      reg.key(key + "\\Filelist\\0");
      reg.text("FileName", "kernel32.dll");
    }
  }
  return reg.take();
}

std::string variableName(std::size_t index) { return "VRXGEN_VAR" + std::to_string(index); }

std::string environmentRegText(const MachineSize& size) {
  RegWriter reg;
  reg.key("HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment");
  for (std::size_t index = 0; index < size.variables; index += 2)
    reg.text(variableName(index), "C:\\Tools\\" + std::to_string(index));
  reg.key("HKEY_CURRENT_USER\\Environment");
  for (std::size_t index = 1; index < size.variables; index += 2)
    reg.text(variableName(index), "%USERPROFILE%\\bin" + std::to_string(index));
  return reg.take();
}

std::string componentName(std::size_t index) { return "gencomp" + std::to_string(index); }
std::string familyName(std::size_t file) { return "genfam" + std::to_string(file); }

std::string ocManagerRegText(const MachineSize& size) {
  RegWriter reg;
  reg.key(std::string(kMachine) +
          "Microsoft\\Windows\\CurrentVersion\\Setup\\Oc Manager\\Subcomponents");
  for (std::size_t index = 0; index < size.components; ++index)
    reg.dword(componentName(index), index % 2);
  return reg.take();
}

// One INF file of up to kComponentsPerInf components, the first the parent of the others.
std::string infText(std::size_t file, const MachineSize& size) {
  std::size_t first = file * kComponentsPerInf;
  std::size_t last = std::min(size.components, first + kComponentsPerInf);
  std::ostringstream names, sections, strings;
  for (std::size_t index = first; index < last; ++index) {
    std::string name = componentName(index);
    names << name << "\r\n";
    sections << "\r\n[" << name << "]\r\nOptionDesc = %" << name << "_DESC%\r\nTip = %" << name
             << "_TIP%\r\nIconIndex = 55\r\n"
             << (index == first ? "" : "Parent = " + componentName(first) + "\r\n")
             << "Modes = 0,1,2,3\r\n";
    strings << name << "_DESC = \"Generated component " << index << "\"\r\n"
            << name << "_TIP = \"Installs generated component " << index << ".\"\r\n";
  }
  return "[Version]\r\nSignature = \"$Windows NT$\"\r\n\r\n[Optional Components]\r\n" +
         names.str() + sections.str() + "\r\n[Strings]\r\n" + strings.str();
}

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out << bytes;
  if (!out.flush()) throw std::runtime_error(path.string() + ": cannot write");
}

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(path.string() + ": cannot read");
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// The template's sysoc.inf with a family line for every generated INF file.
void writeComponents(const fs::path& out, const MachineSize& size) {
  fs::path inf = out / "drive_c" / "Windows" / "inf";
  fs::create_directories(inf);
  std::string families;
  std::size_t files = (size.components + kComponentsPerInf - 1) / kComponentsPerInf;
  for (std::size_t file = 0; file < files; ++file) {
    writeFile(inf / (familyName(file) + ".inf"), infText(file, size));
    families += familyName(file) + "=ocgen.dll,OcEntry," + familyName(file) + ".inf,,7\r\n";
  }
  std::string sysoc = fs::exists(inf / "sysoc.inf") ? readFile(inf / "sysoc.inf")
                                                    : "[Version]\r\n\r\n[Components]\r\n";
  std::size_t section = sysoc.find("[Components]");
  if (section == std::string::npos) throw std::runtime_error("sysoc.inf has no [Components]");
  sysoc.insert(sysoc.find('\n', section) + 1, families);
  writeFile(inf / "sysoc.inf", sysoc);
}

void writeRegistry(const fs::path& out, const MachineSize& size) {
  fs::path folder = out / "registry";
  fs::create_directories(folder);
  for (std::size_t first = 0, file = 0; first < size.applications; first += kKeysPerFile, ++file) {
    std::size_t last = std::min(size.applications, first + kKeysPerFile);
    writeFile(folder / ("80-gen-apps-" + std::to_string(100 + file) + ".reg"),
              applicationsRegText(size, first, last));
  }
  writeFile(folder / "81-gen-hotfix.reg", hotfixRegText(size));
  writeFile(folder / "82-gen-updates.reg", updatesRegText(size));
  writeFile(folder / "83-gen-environment.reg", environmentRegText(size));
  writeFile(folder / "84-gen-oc-manager.reg", ocManagerRegText(size));
}

void addUsers(nlohmann::json& machine, const MachineSize& size) {
  nlohmann::json& users = machine["users"];
  nlohmann::json& loggedOn = machine["loggedOn"];
  for (std::size_t index = 0; index < size.users; ++index) {
    std::string name = "genuser" + std::to_string(index);
    users.push_back({{"name", name},
                     {"fullName", "Generated User " + std::to_string(index)},
                     {"comment", ""},
                     {"flags", 513},
                     {"homeDir", ""},
                     {"countryCode", 0},
                     {"passwordAge", 86400 * (index + 1)},
                     {"lastLogon", 0}});
    if (index % 10 == 0)
      loggedOn.push_back({{"user", name}, {"domain", "CORP"}, {"logonServer", "\\\\DC1"}});
  }
}

void writeMachineJson(const fs::path& out, const MachineSize& size) {
  fs::path file = out / "machine.json";
  nlohmann::json machine =
      fs::exists(file) ? nlohmann::json::parse(readFile(file)) : nlohmann::json::object();
  addUsers(machine, size);
  for (std::size_t index = 0; index < size.variables; index += 2)
    machine["environment"][variableName(index)] = "C:\\Tools\\" + std::to_string(index);
  writeFile(file, machine.dump(2) + "\n");
}

}  // namespace

std::string applicationsRegText(const MachineSize& size) {
  return applicationsRegText(size, 0, size.applications);
}

void writeMachine(const std::string& templateDir, const std::string& outDir,
                  const MachineSize& size) {
  fs::path out(outDir);
  if (fs::exists(out)) throw std::runtime_error(outDir + ": already exists");
  fs::copy(templateDir, out, fs::copy_options::recursive);
  writeRegistry(out, size);
  writeComponents(out, size);
  writeMachineJson(out, size);
}

}  // namespace bench
