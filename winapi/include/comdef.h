// The compiler's COM support as <comdef.h> declares it, as far as the collector uses it: a
// BSTR owned by a _bstr_t, and _com_error, which is thrown when one cannot be allocated.
// Only wide text makes a _bstr_t: mingw-w64 has no support library to convert narrow text.

#ifndef VRX_WINAPI_COMDEF_H
#define VRX_WINAPI_COMDEF_H

#include <memory>

#include "winapi/include/oleauto.h"
#include "winapi/include/windows.h"

class _com_error {
 public:
  _com_error(HRESULT hr) : hr_(hr) {}  // NOLINT: converts implicitly, as on Windows
  HRESULT Error() const { return hr_; }

 private:
  HRESULT hr_;
};

// Throws _com_error(hr).
[[noreturn]] void _com_issue_error(HRESULT hr);

// Copies share one BSTR, which the last of them frees.
class _bstr_t {
 public:
  _bstr_t() = default;
  // A copy of `s` (a null BSTR for null); throws _com_error(E_OUTOFMEMORY) when it cannot be made.
  _bstr_t(const wchar_t* s);  // NOLINT: converts implicitly, as on Windows

  operator const wchar_t*() const { return text_.get(); }
  operator wchar_t*() const { return text_.get(); }
  unsigned int length() const { return SysStringLen(text_.get()); }

 private:
  std::shared_ptr<OLECHAR> text_;
};

#endif
