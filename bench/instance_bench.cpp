// Value building: application records of text turned into typed values by the schema and
// committed as instances, as the application class does for every record it keeps.
#include <benchmark/benchmark.h>

#include "frame/cim_value_builder.h"
#include "vrxcore/mof_loader.h"
#include "vrxcore/repository.h"

namespace {

using namespace NZARVEK20;

installedapps_col::FactList applicationRecords(std::int64_t count) {
  installedapps_col::FactList records;
  for (std::int64_t index = 0; index < count; ++index)
    records.push_back(
        {{"ProductIdentifyingNumber", "{" + std::to_string(100000 + index) + "}"},
         {"ProductName", "Studio Runtime Product " + std::to_string(index)},
         {"ProductVersion", std::to_string(index % 20) + ".4." + std::to_string(index)},
         {"ProductInstallDate", "20250619"},
         {"ProductVendor", "Adventure Works"}});
  return records;
}

void BuildApplicationInstances(benchmark::State& state) {
  const installedapps_col::FactList records = applicationRecords(state.range(0));
  for (auto _ : state) {
    auto ns = TRepositoryNamespace::Create("root/bench");
    LoadMofFile(*ns, VRX_SCHEMA);
    auto cimClass = ns->FindClass("QELTO_InstalledApplication");
    installedapps_col::CIMValueBuilder builder(cimClass);
    for (const installedapps_col::FactMap& record : records) {
      auto instance = cimClass->AllocateInstance({});
      for (const auto& [name, value] : builder.buildProperties(record))
        instance->SetPropertyValue(name, value, {});
      // The keys the collector sets itself: the machine's name and an empty collection.
      instance->SetPropertyValue("SystemID", TCIMValue("BENCH-PC"), {});
      instance->SetPropertyValue("CollectionID", TCIMValue(""), {});
      instance->Commit({});
    }
    benchmark::DoNotOptimize(ns);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * records.size()));
}
BENCHMARK(BuildApplicationInstances)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
