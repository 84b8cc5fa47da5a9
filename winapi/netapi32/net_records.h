// The answers of the Net API enumerations: records in one buffer that NetApiBufferFree
// releases, the fixed structures first and the strings they point to after them, handed out a
// page at a time. A page holds as many records as fit in the caller's preferred length,
// counting each with its strings, and at least one; a resume handle carries the place of the
// next page from call to call, and is 0 again after the last.
#ifndef VRX_WINAPI_NET_RECORDS_H
#define VRX_WINAPI_NET_RECORDS_H

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "winapi/include/lm.h"
#include "winapi/support/local_memory.h"

namespace winapi {

// One record: its fixed structure, and the strings and bytes its pointer fields lead to.
template <class Info>
struct NetRecord {
  Info info{};
  std::vector<std::pair<LPWSTR Info::*, std::wstring>> texts;
  std::vector<std::pair<PBYTE Info::*, std::vector<BYTE>>> bytes;
};

// Where the caller wants the page, as the enumeration functions take it.
struct NetPageRequest {
  DWORD preferredLength;
  LPBYTE* buffer;
  LPDWORD entriesRead;
  LPDWORD totalEntries;
  LPDWORD resumeHandle;  // may be null: every call then starts at the first record
};

struct NetPage {
  std::size_t first;
  std::size_t count;
};

// Checks the pointers of the request and empties the answer, so that a failure leaves no
// stale buffer; ERROR_INVALID_PARAMETER when a pointer the answer needs is missing.
NET_API_STATUS startNetAnswer(const NetPageRequest& request);

// The records from `first` that fit in `preferredLength` bytes, given the size of each.
NetPage choosePage(const std::vector<std::size_t>& sizes, std::size_t first, DWORD preferredLength);

// Each variable part takes whole WCHARs, so that the strings after it stay aligned.
constexpr std::size_t netDataSize(std::size_t bytes) {
  return (bytes + sizeof(WCHAR) - 1) / sizeof(WCHAR) * sizeof(WCHAR);
}

template <class Info>
std::size_t netRecordSize(const NetRecord<Info>& record) {
  std::size_t size = sizeof(Info);
  for (const auto& text : record.texts) size += (text.second.size() + 1) * sizeof(WCHAR);
  for (const auto& data : record.bytes) size += netDataSize(data.second.size());
  return size;
}

template <class Info>
LPBYTE packNetRecords(const NetRecord<Info>* records, std::size_t count) {
  std::size_t total = 0;
  for (std::size_t i = 0; i < count; ++i) total += netRecordSize(records[i]);
  auto* buffer = static_cast<BYTE*>(allocateLocal(total));
  BYTE* data = buffer + count * sizeof(Info);
  for (std::size_t i = 0; i < count; ++i) {
    Info info = records[i].info;
    for (const auto& [field, text] : records[i].texts) {
      info.*field = reinterpret_cast<LPWSTR>(data);
      std::copy(text.c_str(), text.c_str() + text.size() + 1, info.*field);
      data += (text.size() + 1) * sizeof(WCHAR);
    }
    for (const auto& [field, bytes] : records[i].bytes) {
      info.*field = data;
      std::copy(bytes.begin(), bytes.end(), data);
      data += netDataSize(bytes.size());
    }
    new (buffer + i * sizeof(Info)) Info(info);
  }
  return buffer;
}

// Answers the page the request asks for: NERR_Success for the last page, else ERROR_MORE_DATA.
// The buffer is null when the page is empty.
template <class Info>
NET_API_STATUS answerNetPage(const std::vector<NetRecord<Info>>& records,
                             const NetPageRequest& request) {
  std::vector<std::size_t> sizes;
  for (const auto& record : records) sizes.push_back(netRecordSize(record));
  NetPage page =
      choosePage(sizes, request.resumeHandle ? *request.resumeHandle : 0, request.preferredLength);
  bool more = page.first + page.count < records.size();
  *request.buffer = page.count ? packNetRecords(records.data() + page.first, page.count) : nullptr;
  *request.entriesRead = static_cast<DWORD>(page.count);
  // The records from the resume position on, this page's among them.
  *request.totalEntries = static_cast<DWORD>(records.size() - page.first);
  if (request.resumeHandle) *request.resumeHandle = more ? page.first + page.count : 0;
  return more ? ERROR_MORE_DATA : NERR_Success;
}

// NERR_Success when `server` names this machine: null, empty, or its name with or without
// the leading backslashes; else ERROR_BAD_NETPATH, as there is no network to reach another.
NET_API_STATUS checkNetServer(LPCWSTR server);

}  // namespace winapi

#endif
