// BSTRs as OLE Automation lays them out: the length in bytes just before the characters, and a
// terminator after them. Made here for the functions of this layer that hand out text.
#ifndef VRX_WINAPI_BSTR_H
#define VRX_WINAPI_BSTR_H

#include <string_view>

#include "winapi/include/oleauto.h"

namespace winapi {

// A new BSTR holding `text`; nullptr when there is no memory for it.
BSTR newBstr(std::wstring_view text);

}  // namespace winapi

#endif
