// The hot paths of an inventory of a large machine: loading registry files, enumerating the
// sub-keys of an Uninstall key, reading each application's values, and the application filter.
#include <benchmark/benchmark.h>

#include "bench/machine_generator.h"
#include "frame/registry_reader.h"
#include "software/pattern_set.h"
#include "winapi/formats/reg_file.h"
#include "winapi/machine/machine.h"

namespace {

constexpr const char* kUninstall = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

bench::MachineSize sized(std::int64_t applications) {
  bench::MachineSize size;
  size.applications = static_cast<std::size_t>(applications);
  size.hotfixes = size.applications / 50;
  return size;
}

std::shared_ptr<winapi::Registry> loaded(const std::string& text) {
  auto registry = std::make_shared<winapi::Registry>();
  winapi::mergeRegFile(*registry, text, "apps.reg", 1252);
  return registry;
}

// Makes the current machine one whose registry holds `applications` generated applications.
void useMachineOf(std::int64_t applications) {
  winapi::setCurrentMachine(winapi::Machine::fromDescription(
      nlohmann::json::object(), "", loaded(bench::applicationsRegText(sized(applications)))));
}

void LoadRegFile(benchmark::State& state) {
  const std::string text = bench::applicationsRegText(sized(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(loaded(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(LoadRegFile)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void EnumerateSubKeys(benchmark::State& state) {
  useMachineOf(state.range(0));
  for (auto _ : state) {
    std::vector<std::string> keys;
    installedapps_col::RegistryReader().enumerateSubKeys(keys, kUninstall);
    benchmark::DoNotOptimize(keys);
  }
}
BENCHMARK(EnumerateSubKeys)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void ReadApplicationValues(benchmark::State& state) {
  useMachineOf(state.range(0));
  std::vector<std::string> keys;
  installedapps_col::RegistryReader reader;
  reader.enumerateSubKeys(keys, kUninstall);
  const installedapps_col::FactMap wanted = {{"Name", "DisplayName"},
                                             {"Version", "DisplayVersion"},
                                             {"Vendor", "Publisher"},
                                             {"InstallDate", "InstallDate"}};
  for (auto _ : state)
    for (const std::string& key : keys) benchmark::DoNotOptimize(reader.readValues(key, wanted));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * keys.size()));
}
BENCHMARK(ReadApplicationValues)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// The hot-fix filter: every application name against two patterns per HotFix key.
void ApplicationFilter(benchmark::State& state) {
  const std::size_t hotfixes = static_cast<std::size_t>(state.range(0)) / 50;
  std::vector<std::string> patterns = {"Hotfix"};
  for (std::size_t index = 0; index < hotfixes; ++index) {
    patterns.push_back("KB" + std::to_string(100000 + index));
    patterns.push_back("KB " + std::to_string(100000 + index));
  }
  const installedapps_col::PatternSet set(patterns);
  std::vector<std::string> names;
  for (std::int64_t index = 0; index < state.range(0); ++index)
    names.push_back("Studio Runtime Product " + std::to_string(index) +
                    (index % 50 ? "" : " (KB" + std::to_string(100000 + index % 997) + ")"));
  for (auto _ : state)
    for (const std::string& name : names) benchmark::DoNotOptimize(set.occursIn(name));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * names.size()));
}
BENCHMARK(ApplicationFilter)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
