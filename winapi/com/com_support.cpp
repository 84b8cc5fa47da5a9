// _bstr_t and _com_error: the compiler's COM support, over SysAllocString and SysFreeString.
#include "winapi/include/comdef.h"

void _com_issue_error(HRESULT hr) { throw _com_error(hr); }

_bstr_t::_bstr_t(const wchar_t* s) : text_(SysAllocString(s), SysFreeString) {
  if (s && !text_) _com_issue_error(E_OUTOFMEMORY);
}
