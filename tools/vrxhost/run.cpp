#include "tools/vrxhost/run.h"

#include <chrono>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "host/os_specific.h"
#include "host/plugin.h"
#include "host/root_object.h"
#include "kelmon/library_loader.h"
#include "tools/vrxhost/generator.h"
#include "tools/vrxhost/inventory_store.h"
#include "tools/vrxhost/output.h"
#include "tools/vrxhost/platform.h"
#include "vrx_build.h"
#include "vrxcore/core_logger.h"
#include "vrxcore/exporters.h"
#include "vrxcore/machine_text.h"
#include "vrxcore/mof_loader.h"
#include "vrxcore/shipped_files.h"

namespace vrxhost {
namespace {

using namespace NZARVEK20;

const char* const kNamespace = "root/qelto";

// An error that ends the run with `status` after one line on stderr.
struct RunError : std::runtime_error {
  RunError(int status, const std::string& message) : std::runtime_error(message), status(status) {}
  int status;
};

boost::shared_ptr<TRepositoryNamespace> loadSchema(const Options& options) {
  auto ns = TRepositoryNamespace::Create(kNamespace);
  const std::string path = options.schema.empty()
                               ? NZARVEK20::ShippedFile(VRX_INSTALL_DATADIR, "qelto.mof")
                               : options.schema;
  try {
    LoadMofFile(*ns, path);
  } catch (const mof::ParseError& e) {
    throw RunError(kExitFailure, e.what());
  }
  return ns;
}

std::vector<boost::shared_ptr<ICIMClass>> resolveClasses(TRepositoryNamespace& ns,
                                                         const Options& options) {
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  for (const std::string& name : options.classes) {
    auto cimClass = ns.FindClass(name);
    if (!cimClass) throw RunError(kExitUsage, "unknown class " + name + " (not in the schema)");
    classes.push_back(cimClass);
  }
  return classes;
}

IPluginCallbacks* loadPlugin(const Options& options, TPluginManagerNamespace& manager) {
  const std::string path = options.plugin.empty()
                               ? NZARVEK20::ShippedFile(VRX_INSTALL_LIBDIR, pluginFileName())
                               : options.plugin;
  const size_t before = manager.GetPlugins().size();
  try {
    TLibraryLoader::Load(path);
  } catch (const std::runtime_error& e) {
    throw RunError(kExitFailure, e.what());
  }
  const auto plugins = manager.GetPlugins();
  if (plugins.size() == before)
    throw RunError(kExitFailure, path + ": the library loaded but registered no plug-in");
  return plugins.back();
}

void commitComputerSystem(TRepositoryNamespace& ns) {
  auto instance = ns.GetClass("QELTO_ComputerSystem", {})->AllocateInstance({});
  instance->SetPropertyValue("CreationClassName", TCIMValue("QELTO_ComputerSystem"), {});
  instance->SetPropertyValue("Name", TCIMValue(TOSSpecific::GetMachineName()), {});
  instance->Commit({});
}

// Asks the plug-in for each class in turn, so that each is timed on its own.
void collect(IPluginBasicQueryCallbacks& query, boost::shared_ptr<ICIMNamespace> output,
             TRepositoryNamespace& ns, const std::vector<boost::shared_ptr<ICIMClass>>& classes,
             bool verbose) {
  std::map<std::string, size_t> committed;
  ns.Subscribe(
      [&](boost::shared_ptr<ICIMInstance> instance) {
        ++committed[instance->GetClass({})->GetName({})];
        return true;
      },
      {});
  for (const auto& cimClass : classes) {
    const auto start = std::chrono::steady_clock::now();
    query.OnBasicQuery(output, {cimClass});
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    const std::string& name = cimClass->GetName({});
    if (verbose) std::cerr << name << '\t' << committed[name] << '\t' << elapsed.count() << " ms\n";
  }
}

// Level of the lines about the machine itself (a dirty hive read as it stands).
constexpr int kMachineWarningLevel = 2;

void startLog(const Options& options) {
  if (options.log.empty()) return;
  try {
    TCoreLogger::Instance().AddSink(std::make_shared<TFileLogSink>(options.log), options.logLevel);
  } catch (const std::runtime_error& e) {
    throw RunError(kExitFailure, e.what());
  }
  for (const std::string& warning : machineWarnings())
    TCoreLogger::Instance().Log(kMachineWarningLevel, warning);
}

TExporter exporterFor(const Options& options) {
  const TExporter exporter = FindExporter(options.format);
  if (!exporter) throw RunError(kExitUsage, "--format " + options.format + " is not a format");
  return exporter;
}

// What writes the inventory to the store of --store; nothing when there is none.
std::function<void(const std::string&)> openStore(const Options& options,
                                                  TRepositoryNamespace& ns) {
  if (options.store.empty()) return nullptr;
  try {
    return openInventoryStore(options.store, ns);
  } catch (const std::invalid_argument& e) {
    throw RunError(kExitUsage, e.what());
  }
}

void storeInventory(const std::function<void(const std::string&)>& store,
                    TRepositoryNamespace& ns) {
  std::ostringstream json;
  FindExporter("json")(json, ns.GetName(), kGenerator, ns.GetInstances(), machineTextToUtf8);
  store(json.str());
}

int runOrThrow(const Options& options) {
  const TExporter exporter = exporterFor(options);
  try {
    presentMachine(options);
  } catch (const std::invalid_argument& e) {
    throw RunError(kExitUsage, e.what());
  }
  auto ns = loadSchema(options);
  const auto classes = resolveClasses(*ns, options);
  const auto store = openStore(options, *ns);
  startLog(options);

  auto manager =
      boost::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
  manager->AddUnderlyingNamespace(ns, {});
  IPluginCallbacks* plugin = loadPlugin(options, *manager);
  auto* query = dynamic_cast<IPluginBasicQueryCallbacks*>(plugin);
  if (!query) throw RunError(kExitFailure, plugin->GetPluginName() + ": does not answer queries");

  commitComputerSystem(*ns);
  plugin->Init();
  collect(*query, manager, *ns, classes, options.verbose);
  plugin->DeInit();
  if (const std::string note = machineReadingNote(); options.verbose && !note.empty())
    std::cerr << note << '\n';
  if (store) storeInventory(store, *ns);
  if (!store || !options.output.empty())
    writeOutput(options.output, [&](std::ostream& out) {
      exporter(out, ns->GetName(), kGenerator, ns->GetInstances(), machineTextToUtf8);
    });
  manager->DestroyPlugins();
  return kExitOk;
}

// The machine's registry instead of an inventory: no schema, plug-in or collector.
int exportRegistryOrThrow(const Options& options) {
  std::function<void(std::ostream&)> write;
  try {
    write = registryExport(options);
  } catch (const std::invalid_argument& e) {
    throw RunError(kExitUsage, e.what());
  }
  writeOutput(options.output, write);
  return kExitOk;
}

}  // namespace

int run(const Options& options) {
  try {
    return options.exportRegistry.empty() ? runOrThrow(options) : exportRegistryOrThrow(options);
  } catch (const RunError& e) {
    std::cerr << "vrxhost: " << e.what() << '\n';
    return e.status;
  } catch (const std::exception& e) {
    std::cerr << "vrxhost: " << e.what() << '\n';
    return kExitFailure;
  }
}

}  // namespace vrxhost
