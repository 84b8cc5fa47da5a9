// version.dll: GetFileVersionInfoSizeA, GetFileVersionInfoA and VerQueryValueA over the
// machine's PE files. pe_resources.h finds the version resource, version_blocks.h lays out
// the buffer and walks it. Unlike Windows, GetFileVersionInfoA wants the whole size that
// GetFileVersionInfoSizeA gave: a shorter buffer would leave VerQueryValueA no room for the
// ANSI copies of text values.
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "winapi/formats/pe_resources.h"
#include "winapi/formats/version_blocks.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/fs_redirection.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/unicode_text.h"

namespace {

// A file mapped for reading while the object lives; the mapping outlives the descriptor.
class MappedFile {
 public:
  explicit MappedFile(const winapi::FileDescriptor& file) {
    const int descriptor = file.get();
    if (descriptor < 0) return;
    struct stat status;
    if (fstat(descriptor, &status) == 0) {
      size_ = static_cast<std::size_t>(status.st_size);
      void* address =
          size_ == 0 ? nullptr : mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, descriptor, 0);
      readable_ = size_ == 0 || address != MAP_FAILED;
      if (size_ != 0 && address != MAP_FAILED) address_ = address;
    }
  }
  ~MappedFile() {
    if (address_) munmap(address_, size_);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::optional<std::string_view> bytes() const {
    if (!readable_) return std::nullopt;
    return address_ ? std::string_view(static_cast<const char*>(address_), size_)
                    : std::string_view();
  }

 private:
  void* address_ = nullptr;
  std::size_t size_ = 0;
  bool readable_ = false;
};

BOOL fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

std::string fromAnsi(LPCSTR text) {
  return winapi::codePageToUtf8(winapi::currentMachine().ansiCodePage(), text);
}

// The root version block of a file, or the error that keeps it from being read.
struct VersionData {
  DWORD error;
  std::string block;
};

VersionData readVersionData(LPCSTR fileName) {
  winapi::MachineFile file = winapi::findMachineFile(fromAnsi(fileName));
  if (file.error != ERROR_SUCCESS) return {file.error, ""};
  MappedFile mapped(winapi::currentMachine().files().open(file.path));
  std::optional<std::string_view> image = mapped.bytes();
  if (!image) return {ERROR_ACCESS_DENIED, ""};
  winapi::ResourceLookup resource = winapi::findResource(*image, winapi::kVersionResourceType);
  if (resource.error != ERROR_SUCCESS) return {resource.error, ""};
  std::optional<std::string_view> data = winapi::versionData(resource.data);
  if (!data) return {ERROR_INVALID_DATA, ""};
  return {ERROR_SUCCESS, std::string(*data)};
}

// Writes the ANSI copy of `units` UTF-16 characters into `room`, cut after whole characters
// when it does not fit, and terminated; returns its length with the terminator (0 for an
// empty value, as the resource gives it).
UINT storeAnsiText(const unsigned char* wide, std::size_t units, winapi::AnsiRoom room) {
  std::wstring text = winapi::utf16leToWide(wide, units);
  text.resize(std::min(text.find(L'\0'), text.size()));
  auto encoded =
      winapi::encode(winapi::currentMachine().ansiCodePage(), text.data(), text.size(), "?");
  auto fits = std::upper_bound(encoded->ends.begin(), encoded->ends.end(), room.size - 1);
  std::size_t length = fits == encoded->ends.begin() ? 0 : *(fits - 1);
  std::memcpy(room.place, encoded->bytes.data(), length);
  room.place[length] = '\0';
  return units == 0 ? 0 : static_cast<UINT>(length + 1);
}

BOOL answer(LPVOID value, UINT length, LPVOID* lplpBuffer, PUINT puLen) {
  *lplpBuffer = value;
  if (puLen) *puLen = length;
  return TRUE;
}

}  // namespace

extern "C" DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR lptstrFilename, LPDWORD lpdwHandle) {
  using namespace winapi;
  if (auto failed = injected<DWORD>("GetFileVersionInfoSizeA", Reports::ThroughLastError))
    return *failed;
  if (lpdwHandle) *lpdwHandle = 0;
  if (!lptstrFilename) return fail(ERROR_INVALID_PARAMETER);
  VersionData version = readVersionData(lptstrFilename);
  if (version.error != ERROR_SUCCESS) return fail(version.error);
  return static_cast<DWORD>(versionInfoSize(version.block));
}

// dwHandle is ignored, as on Windows.
extern "C" BOOL WINAPI GetFileVersionInfoA(LPCSTR lptstrFilename, DWORD dwHandle, DWORD dwLen,
                                           LPVOID lpData) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetFileVersionInfoA", Reports::ThroughLastError))
    return *failed;
  (void)dwHandle;
  if (!lptstrFilename) return fail(ERROR_INVALID_PARAMETER);
  if (!lpData) return fail(ERROR_INVALID_DATA);
  VersionData version = readVersionData(lptstrFilename);
  if (version.error != ERROR_SUCCESS) return fail(version.error);
  if (dwLen < versionInfoSize(version.block)) return fail(ERROR_INSUFFICIENT_BUFFER);
  storeVersionInfo(version.block, static_cast<unsigned char*>(lpData));
  return TRUE;
}

// A binary value is answered in place, its length in bytes; a text value by its ANSI copy,
// its length in characters with the terminator. A missing sub-block gives a length of 0.
extern "C" BOOL WINAPI VerQueryValueA(LPCVOID pBlock, LPCSTR lpSubBlock, LPVOID* lplpBuffer,
                                      PUINT puLen) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("VerQueryValueA", Reports::ThroughLastError)) return *failed;
  if (!pBlock || !lplpBuffer) return fail(ERROR_INVALID_PARAMETER);
  auto* buffer = static_cast<unsigned char*>(const_cast<void*>(pBlock));
  std::optional<VersionValue> value =
      findVersionValue(buffer, lpSubBlock ? fromAnsi(lpSubBlock) : "\\");
  if (!value) {
    if (puLen) *puLen = 0;
    return fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
  }
  if (!value->text)
    return answer(buffer + value->offset, static_cast<UINT>(value->length), lplpBuffer, puLen);
  std::optional<AnsiRoom> room = ansiRoom(buffer, value->offset);
  if (!room) return fail(ERROR_INSUFFICIENT_BUFFER);
  if (room->size == 0) return answer(const_cast<char*>(""), 0, lplpBuffer, puLen);
  UINT length = storeAnsiText(buffer + value->offset, value->length, *room);
  return answer(room->place, length, lplpBuffer, puLen);
}
