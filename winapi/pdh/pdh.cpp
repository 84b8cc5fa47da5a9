// Performance Data Helper over the machine. Queries and counters are handles of this layer; the
// counters the machine has are a static table, each sampled from a machine figure by
// PdhCollectQueryData. A figure the machine does not give leaves its counter without data, and
// a collection in which no counter got data answers PDH_NO_DATA, as Windows does when it could
// read nothing for a query.
#include "winapi/include/pdh.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "winapi/formats/pdh_paths.h"
#include "winapi/include/pdhmsg.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/machine_figures.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/handles.h"
#include "winapi/support/text.h"

static_assert(sizeof(PDH_COUNTER_INFO_A) == 112 && offsetof(PDH_COUNTER_INFO_A, DataBuffer) == 104,
              "PDH_COUNTER_INFO_A as 64-bit Windows lays it out");
static_assert(sizeof(PDH_FMT_COUNTERVALUE) == 16, "PDH_FMT_COUNTERVALUE as Windows lays it out");

namespace {

using winapi::HandleKind;

// The handle kinds of this area.
constexpr HandleKind kQueryKind = HandleKind::PdhQuery;
constexpr HandleKind kCounterKind = HandleKind::PdhCounter;

constexpr DWORD kFormatTypes = PDH_FMT_LONG | PDH_FMT_DOUBLE | PDH_FMT_LARGE;
constexpr DWORD kFormatScales = PDH_FMT_NOSCALE | PDH_FMT_NOCAP100 | PDH_FMT_1000;

struct CounterDefinition {
  const char* object;
  const char* counter;
  DWORD type;
  const char* explanation;
  std::optional<LONGLONG> (*sample)();
};

std::optional<LONGLONG> secondsSinceBoot() {
  const nlohmann::json* uptime = winapi::machineFigure("uptimeSeconds");
  if (!uptime) return std::nullopt;
  return uptime->get<LONGLONG>();
}

// No object here has instances.
const CounterDefinition kCounters[] = {
    {"System", "System Up Time", PERF_ELAPSED_TIME,
     "Seconds the computer has been running since it was last started.", secondsSinceBoot},
};

struct Query;

struct Counter : winapi::HandleObject {
  static constexpr HandleKind kKind = kCounterKind;
  Counter(Query& owner, const CounterDefinition& what, DWORD_PTR data)
      : HandleObject(kKind), query(owner), definition(what), userData(data) {}

  Query& query;
  const CounterDefinition& definition;
  DWORD_PTR userData;
  DWORD status = PDH_CSTATUS_INVALID_DATA;  // until a collection gives it data
  LONGLONG value = 0;
};

struct Query : winapi::HandleObject {
  static constexpr HandleKind kKind = kQueryKind;
  explicit Query(DWORD_PTR data) : HandleObject(kKind), userData(data) {}

  DWORD_PTR userData;
  std::vector<std::unique_ptr<Counter>> counters;
};

// PDH calls may come from several threads, and one call may end another's objects.
std::mutex pdhMutex;

PDH_STATUS status(DWORD code) { return static_cast<PDH_STATUS>(code); }

std::string localName() {
  const winapi::Machine& machine = winapi::currentMachine();
  return winapi::utf8ToCodePage(machine.ansiCodePage(), machine.computerName());
}

struct Lookup {
  const CounterDefinition* definition;
  DWORD status;
};

// The counter that `text` names on this machine, or the status PDH gives for it. Names are
// compared without regard to case.
Lookup findCounter(const char* text) {
  std::optional<winapi::CounterPath> path = winapi::parseCounterPath(text);
  if (!path) return {nullptr, PDH_CSTATUS_BAD_COUNTERNAME};
  if (!path->machine.empty() && !winapi::equalsIgnoringCase(path->machine, localName()))
    return {nullptr, PDH_CSTATUS_NO_MACHINE};
  bool objectFound = false;
  for (const CounterDefinition& definition : kCounters) {
    if (!winapi::equalsIgnoringCase(definition.object, path->object)) continue;
    objectFound = true;
    if (path->instance) return {nullptr, PDH_CSTATUS_NO_INSTANCE};
    if (winapi::equalsIgnoringCase(definition.counter, path->counter))
      return {&definition, PDH_CSTATUS_VALID_DATA};
  }
  return {nullptr, objectFound ? PDH_CSTATUS_NO_COUNTER : PDH_CSTATUS_NO_OBJECT};
}

// The texts that follow a counter's information record, in the order they are laid out.
struct CounterTexts {
  std::string fullPath, machine, object, counter;
  std::optional<std::string> explanation;

  DWORD size() const {
    std::size_t size = fullPath.size() + machine.size() + object.size() + counter.size() + 4;
    if (explanation) size += explanation->size() + 1;
    return static_cast<DWORD>(size);
  }
};

CounterTexts textsOf(const Counter& counter, bool withExplanation) {
  const CounterDefinition& definition = counter.definition;
  winapi::CounterPath path;
  path.machine = localName();
  path.object = definition.object;
  path.counter = definition.counter;
  CounterTexts texts{winapi::formatCounterPath(path), "\\\\" + path.machine, path.object,
                     path.counter, std::nullopt};
  if (withExplanation) texts.explanation = definition.explanation;
  return texts;
}

// Writes the record and its texts to `buffer`, which has room for `size` bytes.
void writeCounterInfo(const Counter& counter, const CounterTexts& texts, DWORD size,
                      PPDH_COUNTER_INFO_A buffer) {
  char* cursor = reinterpret_cast<char*>(buffer) + offsetof(PDH_COUNTER_INFO_A, DataBuffer);
  auto place = [&cursor](const std::string& text) {
    char* start = cursor;
    std::memcpy(cursor, text.c_str(), text.size() + 1);
    cursor += text.size() + 1;
    return start;
  };
  PDH_COUNTER_INFO_A info{};
  info.dwLength = size;
  info.dwType = counter.definition.type;
  info.CVersion = PDH_VERSION;
  info.CStatus = counter.status;
  info.dwUserData = counter.userData;
  info.dwQueryUserData = counter.query.userData;
  info.szFullPath = place(texts.fullPath);
  info.szMachineName = place(texts.machine);
  info.szObjectName = place(texts.object);
  info.szCounterName = place(texts.counter);
  info.szExplainText = texts.explanation ? place(*texts.explanation) : nullptr;
  std::memcpy(buffer, &info, offsetof(PDH_COUNTER_INFO_A, DataBuffer));
}

bool validFormat(DWORD format) {
  DWORD type = format & kFormatTypes;
  return (format & ~(kFormatTypes | kFormatScales)) == 0 &&
         (type == PDH_FMT_LONG || type == PDH_FMT_DOUBLE || type == PDH_FMT_LARGE);
}

// The sample in `format`. PDH_FMT_LONG keeps the low 32 bits of a larger value.
void formatValue(LONGLONG sample, DWORD format, PDH_FMT_COUNTERVALUE& value) {
  if (format & PDH_FMT_1000) sample *= 1000;
  switch (format & kFormatTypes) {
    case PDH_FMT_LONG:
      value.longValue = static_cast<LONG>(sample);
      break;
    case PDH_FMT_DOUBLE:
      value.doubleValue = static_cast<double>(sample);
      break;
    default:
      value.largeValue = sample;
  }
  value.CStatus = PDH_CSTATUS_VALID_DATA;
}

// \\WKS-042 and WKS-042 name the same machine.
std::string withoutBackslashes(std::string_view name) {
  std::size_t start = name.find_first_not_of('\\');
  return start == std::string_view::npos ? "" : std::string(name.substr(start));
}

winapi::CounterPath pathOf(const PDH_COUNTER_PATH_ELEMENTS_A& elements) {
  winapi::CounterPath path;
  if (elements.szMachineName) path.machine = withoutBackslashes(elements.szMachineName);
  path.object = elements.szObjectName;
  if (elements.szInstanceName) {
    path.instance = elements.szInstanceName;
    if (elements.szParentInstance) path.parentInstance = elements.szParentInstance;
    path.instanceIndex = elements.dwInstanceIndex;
  }
  path.counter = elements.szCounterName;
  return path;
}

}  // namespace

// Only paths for people (dwFlags 0) are made; the WBEM forms are not.
extern "C" PDH_STATUS WINAPI PdhMakeCounterPathA(PPDH_COUNTER_PATH_ELEMENTS_A pCounterPathElements,
                                                 LPSTR szFullPathBuffer, LPDWORD pcchBufferSize,
                                                 DWORD dwFlags) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhMakeCounterPathA", Reports::ByReturnValue))
    return *failed;
  const PDH_COUNTER_PATH_ELEMENTS_A* elements = pCounterPathElements;
  if (!elements || !elements->szObjectName || !elements->szCounterName || !pcchBufferSize ||
      dwFlags != 0)
    return status(PDH_INVALID_ARGUMENT);
  std::string text = formatCounterPath(pathOf(*elements));
  DWORD needed = static_cast<DWORD>(text.size() + 1);
  if (*pcchBufferSize < needed) {
    *pcchBufferSize = needed;
    return status(PDH_MORE_DATA);
  }
  if (!szFullPathBuffer) return status(PDH_INVALID_ARGUMENT);
  std::memcpy(szFullPathBuffer, text.c_str(), needed);
  *pcchBufferSize = needed;
  return ERROR_SUCCESS;
}

// Real-time data only: the machine keeps no performance logs to read a query from.
extern "C" PDH_STATUS WINAPI PdhOpenQueryA(LPCSTR szDataSource, DWORD_PTR dwUserData,
                                           PDH_HQUERY* phQuery) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhOpenQueryA", Reports::ByReturnValue)) return *failed;
  if (!phQuery) return status(PDH_INVALID_ARGUMENT);
  if (szDataSource) return status(PDH_FILE_NOT_FOUND);
  std::lock_guard<std::mutex> lock(pdhMutex);
  auto* query = new Query(dwUserData);
  registerHandle(query, query);
  *phQuery = query;
  return ERROR_SUCCESS;
}

extern "C" PDH_STATUS WINAPI PdhAddCounterA(PDH_HQUERY hQuery, LPCSTR szFullCounterPath,
                                            DWORD_PTR dwUserData, PDH_HCOUNTER* phCounter) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhAddCounterA", Reports::ByReturnValue)) return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  Query* query = checkHandle<Query>(hQuery);
  if (!query) return status(PDH_INVALID_HANDLE);
  if (!szFullCounterPath || !phCounter) return status(PDH_INVALID_ARGUMENT);
  Lookup found = findCounter(szFullCounterPath);
  if (!found.definition) return status(found.status);
  query->counters.push_back(std::make_unique<Counter>(*query, *found.definition, dwUserData));
  Counter* counter = query->counters.back().get();
  registerHandle(counter, counter);
  *phCounter = counter;
  return ERROR_SUCCESS;
}

// A buffer too small for the record and its texts (a size of 0 asks for the size) gets
// PDH_MORE_DATA and the size needed, and is left as it was.
extern "C" PDH_STATUS WINAPI PdhGetCounterInfoA(PDH_HCOUNTER hCounter, BOOLEAN bRetrieveExplainText,
                                                LPDWORD pdwBufferSize,
                                                PPDH_COUNTER_INFO_A lpBuffer) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhGetCounterInfoA", Reports::ByReturnValue))
    return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  Counter* counter = checkHandle<Counter>(hCounter);
  if (!counter) return status(PDH_INVALID_HANDLE);
  if (!pdwBufferSize) return status(PDH_INVALID_ARGUMENT);
  CounterTexts texts = textsOf(*counter, bRetrieveExplainText);
  DWORD needed = static_cast<DWORD>(offsetof(PDH_COUNTER_INFO_A, DataBuffer)) + texts.size();
  if (*pdwBufferSize < needed) {
    *pdwBufferSize = needed;
    return status(PDH_MORE_DATA);
  }
  if (!lpBuffer) return status(PDH_INVALID_ARGUMENT);
  writeCounterInfo(*counter, texts, needed, lpBuffer);
  *pdwBufferSize = needed;
  return ERROR_SUCCESS;
}

extern "C" PDH_STATUS WINAPI PdhCollectQueryData(PDH_HQUERY hQuery) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhCollectQueryData", Reports::ByReturnValue))
    return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  Query* query = checkHandle<Query>(hQuery);
  if (!query) return status(PDH_INVALID_HANDLE);
  bool anyData = false;
  for (const std::unique_ptr<Counter>& counter : query->counters) {
    std::optional<LONGLONG> sample = counter->definition.sample();
    counter->status = sample ? PDH_CSTATUS_VALID_DATA : PDH_CSTATUS_INVALID_DATA;
    counter->value = sample.value_or(0);
    anyData = anyData || sample.has_value();
  }
  return anyData ? ERROR_SUCCESS : status(PDH_NO_DATA);
}

// A counter without data answers PDH_INVALID_DATA, its own status in CStatus and the value
// untouched.
extern "C" PDH_STATUS WINAPI PdhGetFormattedCounterValue(PDH_HCOUNTER hCounter, DWORD dwFormat,
                                                         LPDWORD lpdwType,
                                                         PPDH_FMT_COUNTERVALUE pValue) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhGetFormattedCounterValue", Reports::ByReturnValue))
    return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  const Counter* counter = checkHandle<Counter>(hCounter);
  if (!counter) return status(PDH_INVALID_HANDLE);
  if (!pValue || !validFormat(dwFormat)) return status(PDH_INVALID_ARGUMENT);
  if (counter->status != PDH_CSTATUS_VALID_DATA) {
    pValue->CStatus = counter->status;
    return status(PDH_INVALID_DATA);
  }
  formatValue(counter->value, dwFormat, *pValue);
  if (lpdwType) *lpdwType = counter->definition.type;
  return ERROR_SUCCESS;
}

extern "C" PDH_STATUS WINAPI PdhRemoveCounter(PDH_HCOUNTER hCounter) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhRemoveCounter", Reports::ByReturnValue))
    return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  Counter* counter = takeHandle<Counter>(hCounter);
  if (!counter) return status(PDH_INVALID_HANDLE);
  auto& counters = counter->query.counters;
  counters.erase(std::find_if(counters.begin(), counters.end(),
                              [counter](const auto& owned) { return owned.get() == counter; }));
  return ERROR_SUCCESS;
}

// Ends the query and every counter still in it.
extern "C" PDH_STATUS WINAPI PdhCloseQuery(PDH_HQUERY hQuery) {
  using namespace winapi;
  if (auto failed = injected<PDH_STATUS>("PdhCloseQuery", Reports::ByReturnValue)) return *failed;
  std::lock_guard<std::mutex> lock(pdhMutex);
  std::unique_ptr<Query> query(takeHandle<Query>(hQuery));
  if (!query) return status(PDH_INVALID_HANDLE);
  for (const std::unique_ptr<Counter>& counter : query->counters)
    takeHandle<Counter>(counter.get());
  return ERROR_SUCCESS;
}
