#include "winapi/netapi32/net_records.h"

#include <algorithm>

#include "winapi/machine/machine.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

NET_API_STATUS startNetAnswer(const NetPageRequest& request) {
  if (!request.buffer || !request.entriesRead || !request.totalEntries)
    return ERROR_INVALID_PARAMETER;
  *request.buffer = nullptr;
  *request.entriesRead = 0;
  *request.totalEntries = 0;
  return NERR_Success;
}

NetPage choosePage(const std::vector<std::size_t>& sizes, std::size_t first,
                   DWORD preferredLength) {
  NetPage page{std::min(first, sizes.size()), 0};
  std::size_t used = 0;
  for (std::size_t i = page.first; i < sizes.size(); ++i) {
    bool fits = preferredLength == MAX_PREFERRED_LENGTH || used + sizes[i] <= preferredLength;
    if (page.count > 0 && !fits) break;
    used += sizes[i];
    ++page.count;
  }
  return page;
}

NET_API_STATUS checkNetServer(LPCWSTR server) {
  if (!server || !*server) return NERR_Success;
  std::string name = wideToUtf8(server);
  if (name.rfind("\\\\", 0) == 0) name.erase(0, 2);
  return equalsIgnoringCase(name, currentMachine().computerName()) ? NERR_Success
                                                                   : ERROR_BAD_NETPATH;
}

}  // namespace winapi
