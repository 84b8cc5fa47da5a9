// Replaying the logs of a large dirty hive: a SOFTWARE hive of about 12 MB whose log holds a new
// page for nearly every one of its pages, as when a machine stops after rewriting a hive whole.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "bench/hive_log_writer.h"
#include "bench/hive_writer.h"
#include "bench/machine_generator.h"
#include "winapi/files/folder_files.h"
#include "winapi/formats/reg_file.h"
#include "winapi/machine/hive_replay.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kApplications = 16000;  // about 12 MB of hive
constexpr std::size_t kPagesPerEntry = 64;

std::string softwareHive(std::uint64_t seed) {
  bench::MachineSize size;
  size.applications = kApplications;
  size.seed = seed;
  winapi::Registry registry;
  winapi::mergeRegFile(registry, bench::applicationsRegText(size), "apps.reg", 1252);
  return bench::hiveBytes(*registry.root(winapi::Hive::LocalMachine).find({L"SOFTWARE"}));
}

void ReplayHiveLogs(benchmark::State& state) {
  const fs::path dir =
      fs::temp_directory_path() / ("vrx_bench_hive_log_" + std::to_string(getpid()));
  fs::create_directories(dir);
  const std::string before = softwareHive(1), after = softwareHive(2);
  std::ofstream(dir / "SOFTWARE", std::ios::binary) << bench::dirtyPrimary(before, 100);
  std::ofstream(dir / "SOFTWARE.LOG1", std::ios::binary)
      << bench::transactionLog(before, after, 100, kPagesPerEntry);
  std::vector<std::string> warnings;
  const winapi::FolderFiles files = winapi::FolderFiles::volume(dir);
  const winapi::HiveLocation hive{files, "C:\\SOFTWARE"};
  for (auto _ : state) {
    winapi::FileDescriptor primary = files.open(hive.path);
    benchmark::DoNotOptimize(winapi::replayedHive(hive, primary.get(), warnings));
  }
  if (!warnings.empty()) state.SkipWithError(warnings.front().c_str());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * after.size()));
  fs::remove_all(dir);
}
BENCHMARK(ReplayHiveLogs)->Unit(benchmark::kMillisecond);

}  // namespace
