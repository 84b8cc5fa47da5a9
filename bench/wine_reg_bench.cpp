// Loading a Wine prefix's system.reg of many applications, in the form Wine writes it: a time
// stamp and #time per key, \x escapes, expandable strings and hex lists wrapped over lines.
#include <benchmark/benchmark.h>

#include <string>

#include "winapi/formats/wine_reg_file.h"
#include "winapi/support/registry_store.h"

namespace {

std::string wineSystemReg(std::int64_t applications) {
  std::string text =
      "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\Machine\n\n"
      "#arch=win64\n";
  for (std::int64_t i = 0; i < applications; ++i) {
    std::string n = std::to_string(i);
    text += "\n[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Uninstall\\\\App" + n +
            "] 1795420831\n#time=1dd7b20b65ef69c\n"
            "\"DisplayName\"=\"Application caf\\xe9 " +
            n +
            "\"\n"
            "\"DisplayVersion\"=\"1.2." +
            n +
            "\"\n"
            "\"EstimatedSize\"=dword:00000400\n"
            "\"UninstallString\"=str(2):\"%ProgramFiles%\\\\App" +
            n +
            "\\\\uninstall.exe\"\n"
            "\"Blob\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\n"
            "  16,17,18,19,1a,1b,1c,1d,1e,1f\n";
  }
  return text;
}

void LoadWineRegFile(benchmark::State& state) {
  const std::string text = wineSystemReg(state.range(0));
  for (auto _ : state) {
    winapi::Registry registry;
    winapi::mergeWineRegFile(registry, winapi::Hive::LocalMachine, text, "system.reg");
    benchmark::DoNotOptimize(registry);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(LoadWineRegFile)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
