// OLE Automation: BSTRs, VARIANTs of the types this layer hands out, and automation dates; and
// _bstr_t and _com_error, the compiler's COM support, over SysAllocString and SysFreeString.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "winapi/include/comdef.h"
#include "winapi/include/oleauto.h"
#include "winapi/machine/faults.h"
#include "winapi/support/bstr.h"
#include "winapi/support/ole_date.h"

namespace {

using ByteLength = std::uint32_t;

ByteLength* byteLengthOf(BSTR text) { return reinterpret_cast<ByteLength*>(text) - 1; }

}  // namespace

namespace winapi {

BSTR newBstr(std::wstring_view text) {
  constexpr std::size_t kMaxLength = std::numeric_limits<ByteLength>::max() / sizeof(OLECHAR) - 1;
  if (text.size() > kMaxLength) return nullptr;
  void* block = std::malloc(sizeof(ByteLength) + (text.size() + 1) * sizeof(OLECHAR));
  if (!block) return nullptr;
  auto* byteLength = static_cast<ByteLength*>(block);
  *byteLength = static_cast<ByteLength>(text.size() * sizeof(OLECHAR));
  BSTR characters = reinterpret_cast<BSTR>(byteLength + 1);
  std::copy(text.begin(), text.end(), characters);
  characters[text.size()] = L'\0';
  return characters;
}

}  // namespace winapi

extern "C" BSTR WINAPI SysAllocString(const OLECHAR* psz) {
  using namespace winapi;
  if (auto failed = injected<BSTR>("SysAllocString", Reports::ByReturnValue)) return *failed;
  return psz ? newBstr(psz) : nullptr;
}

extern "C" void WINAPI SysFreeString(BSTR bstrString) {
  if (bstrString) std::free(byteLengthOf(bstrString));
}

extern "C" UINT WINAPI SysStringLen(BSTR pbstr) {
  return pbstr ? *byteLengthOf(pbstr) / sizeof(OLECHAR) : 0;
}

extern "C" void WINAPI VariantInit(VARIANTARG* pvarg) {
  if (pvarg) pvarg->vt = VT_EMPTY;
}

extern "C" HRESULT WINAPI VariantClear(VARIANTARG* pvarg) {
  using namespace winapi;
  if (auto failed = injected<HRESULT>("VariantClear", Reports::ByReturnValue)) return *failed;
  if (!pvarg) return E_INVALIDARG;
  switch (pvarg->vt) {
    case VT_EMPTY:
    case VT_I4:
    case VT_DATE:
      break;
    case VT_BSTR:
      SysFreeString(pvarg->bstrVal);
      break;
    default:
      // No other type is ever handed out here.
      return DISP_E_BADVARTYPE;
  }
  pvarg->vt = VT_EMPTY;
  return S_OK;
}

extern "C" INT WINAPI VariantTimeToSystemTime(DOUBLE vtime, LPSYSTEMTIME lpSystemTime) {
  using namespace winapi;
  if (auto failed = injected<INT>("VariantTimeToSystemTime", Reports::ByReturnValue))
    return *failed;
  auto time = lpSystemTime ? civilFromOleDate(vtime) : std::nullopt;
  if (!time) return FALSE;
  *lpSystemTime = {static_cast<WORD>(time->year),      static_cast<WORD>(time->month),
                   static_cast<WORD>(time->dayOfWeek), static_cast<WORD>(time->day),
                   static_cast<WORD>(time->hour),      static_cast<WORD>(time->minute),
                   static_cast<WORD>(time->second),    0};
  return TRUE;
}

void _com_issue_error(HRESULT hr) { throw _com_error(hr); }

_bstr_t::_bstr_t(const wchar_t* s) : text_(SysAllocString(s), SysFreeString) {
  if (s && !text_) _com_issue_error(E_OUTOFMEMORY);
}
