#include "winapi/include/pdh.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "test_machine.h"
#include "winapi/formats/pdh_paths.h"
#include "winapi/include/pdhmsg.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

const char* const kUpTime = "\\System\\System Up Time";
const char* const kMachine = R"({"computerName": "WKS-042", "uptimeSeconds": 70000})";

DWORD statusOf(PDH_STATUS status) { return static_cast<DWORD>(status); }

// An open query with the up-time counter; both end with the test.
class UpTimeQuery {
 public:
  explicit UpTimeQuery(const char* path = kUpTime) {
    EXPECT_EQ(statusOf(PdhOpenQueryA(nullptr, 11, &query)), 0u);
    added = statusOf(PdhAddCounterA(query, path, 22, &counter));
  }
  ~UpTimeQuery() { PdhCloseQuery(query); }

  PDH_HQUERY query = nullptr;
  PDH_HCOUNTER counter = nullptr;
  DWORD added;
};

PDH_FMT_COUNTERVALUE sentinelValue() {
  PDH_FMT_COUNTERVALUE value;
  std::memset(&value, 0xAB, sizeof value);
  return value;
}

TEST(Pdh, MakeCounterPathMeasuresThenWrites) {
  char object[] = "System", counter[] = "System Up Time";
  PDH_COUNTER_PATH_ELEMENTS_A elements{nullptr, object, nullptr, nullptr, 0, counter};
  DWORD size = 0;
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, nullptr, &size, 0)), PDH_MORE_DATA);
  EXPECT_EQ(size, std::strlen(kUpTime) + 1);

  std::vector<char> buffer(64, '#');
  size = static_cast<DWORD>(std::strlen(kUpTime));
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, buffer.data(), &size, 0)), PDH_MORE_DATA);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(size, std::strlen(kUpTime) + 1);
  size = static_cast<DWORD>(buffer.size());
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, buffer.data(), &size, 0)), 0u);
  EXPECT_STREQ(buffer.data(), kUpTime);
  EXPECT_EQ(size, std::strlen(kUpTime) + 1);
  EXPECT_EQ(buffer[size], '#');

  // A machine with or without its backslashes; an instance with its parent and index.
  char machine[] = "\\\\WKS-042", bare[] = "WKS-042", parent[] = "svchost", instance[] = "1234";
  PDH_COUNTER_PATH_ELEMENTS_A full{machine, object, instance, parent, 2, counter};
  for (char* name : {machine, bare}) {
    full.szMachineName = name;
    size = static_cast<DWORD>(buffer.size());
    EXPECT_EQ(statusOf(PdhMakeCounterPathA(&full, buffer.data(), &size, 0)), 0u);
    EXPECT_STREQ(buffer.data(), "\\\\WKS-042\\System(svchost/1234#2)\\System Up Time");
  }

  size = static_cast<DWORD>(buffer.size());
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, nullptr, &size, 0)), PDH_INVALID_ARGUMENT);
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, buffer.data(), nullptr, 0)),
            PDH_INVALID_ARGUMENT);
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, buffer.data(), &size, 1)),
            PDH_INVALID_ARGUMENT);
  elements.szCounterName = nullptr;
  EXPECT_EQ(statusOf(PdhMakeCounterPathA(&elements, buffer.data(), &size, 0)),
            PDH_INVALID_ARGUMENT);
}

TEST(Pdh, CounterPathsReadBackAsTheyWereWritten) {
  const char* const paths[] = {
      "\\System\\System Up Time",
      "\\\\WKS-042\\Process(svchost/1234#2)\\% Processor Time",
      "\\Processor(_Total)\\Interrupts/sec",
      "\\LogicalDisk(C:)\\Avg. Disk sec/Read",
      "\\Process(a#b)\\Handle Count",  // '#' without a number is part of the name
  };
  for (const char* text : paths) {
    auto path = winapi::parseCounterPath(text);
    ASSERT_TRUE(path) << text;
    EXPECT_EQ(winapi::formatCounterPath(*path), text);
  }
  auto path = winapi::parseCounterPath("\\\\WKS\\Process(p/i#3)\\C");
  ASSERT_TRUE(path);
  EXPECT_EQ(path->machine, "WKS");
  EXPECT_EQ(path->object, "Process");
  EXPECT_EQ(path->parentInstance, "p");
  EXPECT_EQ(path->instance, "i");
  EXPECT_EQ(path->instanceIndex, 3u);
  EXPECT_EQ(path->counter, "C");
  for (const char* bad : {"", "System\\System Up Time", "\\System", "\\System\\", "\\\\WKS",
                          "\\\\\\System\\X", "\\(i)\\X", "\\Process(i\\X", "\\Process)i(\\X"})
    EXPECT_FALSE(winapi::parseCounterPath(bad)) << bad;
}

TEST(Pdh, TheCollectorsReadingOfTheUpTime) {
  CurrentMachine machine(json::parse(kMachine));
  UpTimeQuery read;
  ASSERT_EQ(read.added, 0u);

  // The information block: its size first, then a buffer of exactly that size.
  DWORD size = 0;
  EXPECT_EQ(statusOf(PdhGetCounterInfoA(read.counter, FALSE, &size, nullptr)), PDH_MORE_DATA);
  const std::string fullPath = "\\\\WKS-042\\System\\System Up Time";
  // The record, then its texts from DataBuffer on, each with its terminator.
  std::size_t texts = 0;
  for (const std::string& text :
       {fullPath, std::string("\\\\WKS-042"), std::string("System"), std::string("System Up Time")})
    texts += text.size() + 1;
  const DWORD needed = static_cast<DWORD>(offsetof(PDH_COUNTER_INFO_A, DataBuffer) + texts);
  EXPECT_EQ(size, needed);
  std::vector<char> block(needed + 16, '#');
  auto* info = reinterpret_cast<PPDH_COUNTER_INFO_A>(block.data());
  size = needed - 1;
  EXPECT_EQ(statusOf(PdhGetCounterInfoA(read.counter, FALSE, &size, info)), PDH_MORE_DATA);
  EXPECT_EQ(size, needed);
  EXPECT_EQ(block[0], '#');
  ASSERT_EQ(statusOf(PdhGetCounterInfoA(read.counter, FALSE, &size, info)), 0u);
  EXPECT_EQ(info->dwLength, needed);
  EXPECT_EQ(info->dwType, static_cast<DWORD>(PERF_ELAPSED_TIME));
  EXPECT_EQ(info->dwType & 0x300, 0x100u);  // a 64-bit value: PDH_FMT_LARGE
  EXPECT_EQ(info->dwUserData, 22u);
  EXPECT_EQ(info->dwQueryUserData, 11u);
  EXPECT_STREQ(info->szFullPath, fullPath.c_str());
  EXPECT_STREQ(info->szMachineName, "\\\\WKS-042");
  EXPECT_STREQ(info->szObjectName, "System");
  EXPECT_EQ(info->szInstanceName, nullptr);
  EXPECT_STREQ(info->szCounterName, "System Up Time");
  EXPECT_EQ(info->szExplainText, nullptr);
  EXPECT_EQ(block[needed - 1], '\0');
  EXPECT_EQ(block[needed], '#');

  // The explanation makes the block longer.
  DWORD explained = 0;
  EXPECT_EQ(statusOf(PdhGetCounterInfoA(read.counter, TRUE, &explained, nullptr)), PDH_MORE_DATA);
  EXPECT_GT(explained, needed);

  ASSERT_EQ(statusOf(PdhCollectQueryData(read.query)), 0u);
  const std::pair<DWORD, double> formats[] = {{PDH_FMT_LARGE, 70000},
                                              {PDH_FMT_DOUBLE, 70000},
                                              {PDH_FMT_LONG, 70000},
                                              {PDH_FMT_LARGE | PDH_FMT_1000, 70000000},
                                              {PDH_FMT_DOUBLE | PDH_FMT_NOSCALE, 70000}};
  for (auto [format, expected] : formats) {
    PDH_FMT_COUNTERVALUE value = sentinelValue();
    DWORD type = 0;
    ASSERT_EQ(statusOf(PdhGetFormattedCounterValue(read.counter, format, &type, &value)), 0u);
    EXPECT_EQ(value.CStatus, PDH_CSTATUS_VALID_DATA);
    EXPECT_EQ(type, static_cast<DWORD>(PERF_ELAPSED_TIME));
    if (format & PDH_FMT_DOUBLE)
      EXPECT_EQ(value.doubleValue, expected);
    else if (format & PDH_FMT_LONG)
      EXPECT_EQ(value.longValue, expected);
    else
      EXPECT_EQ(value.largeValue, expected);
  }
  EXPECT_EQ(statusOf(PdhRemoveCounter(read.counter)), 0u);
}

TEST(Pdh, CountersTheMachineDoesNotHave) {
  CurrentMachine machine(json::parse(kMachine));
  const std::pair<const char*, DWORD> paths[] = {
      {"\\SYSTEM\\system up time", PDH_CSTATUS_VALID_DATA},
      {"\\\\wks-042\\System\\System Up Time", PDH_CSTATUS_VALID_DATA},
      {"\\System\\Processes", PDH_CSTATUS_NO_COUNTER},
      {"\\Memory\\Available Bytes", PDH_CSTATUS_NO_OBJECT},
      {"\\System(_Total)\\System Up Time", PDH_CSTATUS_NO_INSTANCE},
      {"\\\\SRV-001\\System\\System Up Time", PDH_CSTATUS_NO_MACHINE},
      {"System Up Time", PDH_CSTATUS_BAD_COUNTERNAME},
  };
  for (auto [path, status] : paths) {
    UpTimeQuery read(path);
    EXPECT_EQ(read.added, status) << path;
  }
  UpTimeQuery read;
  EXPECT_EQ(statusOf(PdhAddCounterA(read.query, nullptr, 0, &read.counter)), PDH_INVALID_ARGUMENT);
  EXPECT_EQ(statusOf(PdhAddCounterA(read.query, kUpTime, 0, nullptr)), PDH_INVALID_ARGUMENT);
}

TEST(Pdh, AMachineWithoutUpTimeGivesNoData) {
  CurrentMachine machine(json::parse(R"({"computerName": "WKS-042"})"));
  UpTimeQuery read;
  ASSERT_EQ(read.added, 0u);
  PDH_FMT_COUNTERVALUE value = sentinelValue();
  DWORD type = 0xABABABAB;
  // Before any collection, and after one that found nothing.
  EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(read.counter, PDH_FMT_LARGE, &type, &value)),
            PDH_INVALID_DATA);
  EXPECT_EQ(statusOf(PdhCollectQueryData(read.query)), PDH_NO_DATA);
  EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(read.counter, PDH_FMT_LARGE, &type, &value)),
            PDH_INVALID_DATA);
  EXPECT_EQ(value.CStatus, PDH_CSTATUS_INVALID_DATA);
  EXPECT_EQ(value.largeValue, static_cast<LONGLONG>(0xABABABABABABABABull));
  EXPECT_EQ(type, 0xABABABABu);

  // A query without counters has nothing to collect either.
  PDH_HQUERY empty = nullptr;
  ASSERT_EQ(statusOf(PdhOpenQueryA(nullptr, 0, &empty)), 0u);
  EXPECT_EQ(statusOf(PdhCollectQueryData(empty)), PDH_NO_DATA);
  EXPECT_EQ(statusOf(PdhCloseQuery(empty)), 0u);
}

TEST(Pdh, HandlesAndArgumentsAreChecked) {
  CurrentMachine machine(json::parse(kMachine));
  UpTimeQuery read;
  int notAHandle = 0;
  PDH_FMT_COUNTERVALUE value = sentinelValue();
  DWORD size = 0;
  for (HANDLE bad : {static_cast<HANDLE>(nullptr), static_cast<HANDLE>(&notAHandle),
                     static_cast<HANDLE>(read.query)}) {
    EXPECT_EQ(statusOf(PdhGetCounterInfoA(bad, FALSE, &size, nullptr)), PDH_INVALID_HANDLE);
    EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(bad, PDH_FMT_LARGE, nullptr, &value)),
              PDH_INVALID_HANDLE);
    EXPECT_EQ(statusOf(PdhRemoveCounter(bad)), PDH_INVALID_HANDLE);
  }
  for (HANDLE bad : {static_cast<HANDLE>(nullptr), static_cast<HANDLE>(&notAHandle),
                     static_cast<HANDLE>(read.counter)}) {
    PDH_HCOUNTER counter = nullptr;
    EXPECT_EQ(statusOf(PdhAddCounterA(bad, kUpTime, 0, &counter)), PDH_INVALID_HANDLE);
    EXPECT_EQ(statusOf(PdhCollectQueryData(bad)), PDH_INVALID_HANDLE);
    EXPECT_EQ(statusOf(PdhCloseQuery(bad)), PDH_INVALID_HANDLE);
  }
  EXPECT_EQ(value.CStatus, 0xABABABABu);

  ASSERT_EQ(statusOf(PdhCollectQueryData(read.query)), 0u);
  for (DWORD format : {0u, PDH_FMT_LONG | PDH_FMT_LARGE, PDH_FMT_LARGE | 0x10u}) {
    EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(read.counter, format, nullptr, &value)),
              PDH_INVALID_ARGUMENT)
        << format;
  }
  EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(read.counter, PDH_FMT_LONG, nullptr, nullptr)),
            PDH_INVALID_ARGUMENT);
  EXPECT_EQ(statusOf(PdhGetCounterInfoA(read.counter, FALSE, nullptr, nullptr)),
            PDH_INVALID_ARGUMENT);
  size = 4096;
  EXPECT_EQ(statusOf(PdhGetCounterInfoA(read.counter, FALSE, &size, nullptr)),
            PDH_INVALID_ARGUMENT);

  PDH_HQUERY query = nullptr;
  EXPECT_EQ(statusOf(PdhOpenQueryA(nullptr, 0, nullptr)), PDH_INVALID_ARGUMENT);
  EXPECT_EQ(statusOf(PdhOpenQueryA("C:\\perflogs\\log.blg", 0, &query)), PDH_FILE_NOT_FOUND);
  EXPECT_EQ(query, nullptr);
}

TEST(Pdh, RemovedAndClosedHandlesStayDead) {
  CurrentMachine machine(json::parse(kMachine));
  PDH_HQUERY query = nullptr;
  PDH_HCOUNTER first = nullptr, second = nullptr;
  ASSERT_EQ(statusOf(PdhOpenQueryA(nullptr, 0, &query)), 0u);
  ASSERT_EQ(statusOf(PdhAddCounterA(query, kUpTime, 0, &first)), 0u);
  ASSERT_EQ(statusOf(PdhAddCounterA(query, kUpTime, 0, &second)), 0u);
  EXPECT_EQ(statusOf(PdhRemoveCounter(first)), 0u);
  EXPECT_EQ(statusOf(PdhRemoveCounter(first)), PDH_INVALID_HANDLE);
  // The query goes on with the counter left in it.
  EXPECT_EQ(statusOf(PdhCollectQueryData(query)), 0u);
  EXPECT_EQ(statusOf(PdhCloseQuery(query)), 0u);
  PDH_FMT_COUNTERVALUE value = sentinelValue();
  EXPECT_EQ(statusOf(PdhGetFormattedCounterValue(second, PDH_FMT_LARGE, nullptr, &value)),
            PDH_INVALID_HANDLE);
  EXPECT_EQ(statusOf(PdhCloseQuery(query)), PDH_INVALID_HANDLE);
}

TEST(Pdh, FaultsReachTheCounterCalls) {
  json description = json::parse(kMachine);
  description["missing"] = {"pdh.dll!PdhOpenQueryA"};
  description["fail"] = {{"PdhCollectQueryData", "0x800007D5"}, {"PdhAddCounterA", "0xC0000BB8"}};
  CurrentMachine machine(description);
  HMODULE pdh = LoadLibraryA("pdh.dll");
  ASSERT_NE(pdh, nullptr);
  EXPECT_EQ(GetProcAddress(pdh, "PdhOpenQueryA"), nullptr);
  EXPECT_NE(GetProcAddress(pdh, "PdhCollectQueryData"), nullptr);
  EXPECT_TRUE(FreeLibrary(pdh));

  UpTimeQuery read;
  EXPECT_EQ(read.added, PDH_CSTATUS_NO_OBJECT);
  EXPECT_EQ(read.counter, nullptr);
  EXPECT_EQ(statusOf(PdhCollectQueryData(read.query)), PDH_NO_DATA);
}

}  // namespace
