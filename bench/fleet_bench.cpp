// The fleet benchmark: loads COUNT varied inventories made from one template inventory (each
// machine its own name, time, applications, versions, fixes and accounts) into a store, then
// times the questions. Prints one line per measurement: what, then the time.
#include <CLI/CLI.hpp>
#include <chrono>
#include <fstream>
#include <iostream>
#include <random>

#include "store/changes.h"
#include "store/inventory_file.h"
#include "store/questions.h"
#include "store/store.h"
#include "vrxcore/mof_loader.h"

namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string version(std::mt19937_64& random) {
  return std::to_string(random() % 20) + "." + std::to_string(random() % 100) + "." +
         std::to_string(random() % 5000);
}

json instanceOf(const std::string& cls, json properties, const std::string& path) {
  return {{"class", cls}, {"path", path}, {"properties", std::move(properties)}};
}

// Machine `index` of the fleet: the template's instances under another name, some applications
// and fixes left out, others added, versions moved, accounts disabled or never logged on.
json variantOf(const json& base, std::size_t index, std::mt19937_64& random) {
  char name[32];
  std::snprintf(name, sizeof name, "FLEET-%05zu", index);
  json instances = json::array();
  for (json instance : base["instances"]) {
    const std::string cls = instance["class"];
    if (cls == "QELTO_ComputerSystem") instance["properties"]["Name"] = name;
    if (cls == "QELTO_TimeZone")
      instance["properties"]["LocalDateTime"] =
          "202611" + std::to_string(10 + random() % 18) + "101530.000000+060";
    if ((cls == "QELTO_InstalledApplication" || cls == "QELTO_InstalledFix") && random() % 10 == 0)
      continue;
    if (cls == "QELTO_Account") {
      json& account = instance["properties"];
      account["AccountEnabled"] = random() % 4 != 0;
      if (random() % 3 == 0) account.erase("LastLogon");  // never logged on
    }
    instances.push_back(std::move(instance));
  }
  const json like = [&] {
    for (const json& instance : base["instances"])
      if (instance["class"] == "QELTO_InstalledApplication") return instance["properties"];
    return json::object();
  }();
  for (std::size_t i = 0, extra = 10 + random() % 40; i < extra; ++i) {
    json properties = like;
    properties["ProductName"] = "Fleet App " + std::to_string(random() % 200);
    properties["ProductVersion"] = version(random);
    instances.push_back(instanceOf("QELTO_InstalledApplication", properties,
                                   std::string(name) + "/app/" + std::to_string(i)));
  }
  for (std::size_t i = 0, fixes = random() % 10; i < fixes; ++i)
    instances.push_back(
        instanceOf("QELTO_InstalledFix",
                   {{"ProductName", "Update"},
                    {"ProductVersion", "KB" + std::to_string(5000000 + random() % 500)},
                    {"SystemID", name},
                    {"CollectionID", ""}},
                   std::string(name) + "/fix/" + std::to_string(i)));
  return {{"namespace", "root/qelto"}, {"instances", std::move(instances)}};
}

// The best of three runs of `question`, in milliseconds.
double bestMs(const std::function<void()>& question) {
  double best = 1e9;
  for (int i = 0; i < 3; ++i) {
    const auto start = Clock::now();
    question();
    best = std::min(best, secondsSince(start) * 1000);
  }
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  std::string target, templateFile, schemaFile;
  std::size_t count = 10000;
  CLI::App app("Loads a generated fleet into a store and times the questions.", "vrx_fleet_bench");
  app.add_option("--target", target, "the store")->required();
  app.add_option("--template", templateFile, "a JSON inventory written by vrxhost")->required();
  app.add_option("--schema", schemaFile, "the MOF file")->required();
  app.add_option("--count", count, "machines");
  CLI11_PARSE(app, argc, argv);

  auto schema = NZARVEK20::TRepositoryNamespace::Create("root/qelto");
  NZARVEK20::LoadMofFile(*schema, schemaFile);
  vrxstore::Store store(vrxstore::openDatabase(target), *schema);
  std::ifstream in(templateFile);
  const json base = json::parse(in);
  std::mt19937_64 random(1);

  std::vector<std::string> texts;
  for (std::size_t i = 0; i < count; ++i) texts.push_back(variantOf(base, i, random).dump());
  // A second snapshot of the first machine, for the changes.
  texts.push_back(variantOf(base, 0, random).dump());
  const auto start = Clock::now();
  for (const std::string& text : texts)
    store.add(vrxstore::snapshotOfJson(text, store.tables(), "json"));
  std::cout << "load\t" << texts.size() << " inventories\t" << secondsSince(start) << " s\n";

  vrxstore::Database& db = store.database();
  const std::vector<std::pair<std::string, std::function<void()>>> questions = {
      {"latest snapshot of every machine", [&] { vrxstore::ask(db, "latest", {}); }},
      {"applications of one machine", [&] { vrxstore::ask(db, "applications", {"FLEET-00042"}); }},
      {"machines without a fix", [&] { vrxstore::ask(db, "without-fix", {"KB5000123"}); }},
      {"machines with a product below a version",
       [&] {
         vrxstore::ask(db, "below", {"Fleet App 7", "10.0"});
       }},
      {"changes between two snapshots", [&] {
         const auto pair = vrxstore::snapshotsToCompare(db, "FLEET-00000", {}, {});
         vrxstore::changesBetween(db, "FLEET-00000", pair);
       }}};
  for (const auto& question : questions)
    std::cout << question.first << "\t" << bestMs(question.second) << " ms\n";
}
