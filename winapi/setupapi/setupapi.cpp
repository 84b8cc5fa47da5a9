// SetupAPI's INF functions over the machine's files. An INF handle holds the parsed file
// (inf_parser.h); an INFCONTEXT names a section and a line of it by index. Text goes out in
// the machine's ANSI code page with the [Strings] substitutions done.
#include "winapi/include/setupapi.h"

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "winapi/formats/inf_parser.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/fs_redirection.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/handles.h"
#include "winapi/support/unicode_text.h"

namespace {

using winapi::HandleKind;
using winapi::InfFile;
using winapi::InfLine;
using winapi::InfSection;

constexpr HandleKind kInfKind = HandleKind::InfFile;

struct OpenInf : winapi::HandleObject {
  static constexpr HandleKind kKind = kInfKind;
  explicit OpenInf(InfFile parsed) : HandleObject(kKind), file(std::move(parsed)) {}
  InfFile file;
};

// The [Version] signatures of an INF_STYLE_WIN4 file.
const char* const kWin4Signatures[] = {"$Chicago$", "$Windows NT$", "$Windows 95$"};

template <class Result>
Result failWith(DWORD error, Result result) {
  SetLastError(error);
  return result;
}

BOOL fail(DWORD error) { return failWith<BOOL>(error, FALSE); }
HINF failOpen(DWORD error) { return failWith<HINF>(error, INVALID_HANDLE_VALUE); }

std::string fromAnsi(LPCSTR text) {
  return winapi::codePageToUtf8(winapi::currentMachine().ansiCodePage(), text);
}

// A bare file name is looked for in the INF directory, then in the system directory.
std::vector<std::string> candidatePaths(const std::string& name) {
  if (name.find_first_of("\\/") != std::string::npos) return {name};
  const winapi::Machine& machine = winapi::currentMachine();
  return {machine.windowsDirectory() + "\\inf\\" + name, machine.systemDirectory() + "\\" + name};
}

// The first field of `key` in [Version], when there is one.
std::optional<std::string> versionEntry(const InfFile& file, const char* key) {
  std::optional<std::size_t> version = file.sectionIndex("Version");
  if (!version) return std::nullopt;
  const InfSection& section = file.sections()[*version];
  std::optional<std::size_t> line = section.findKey(key);
  if (!line) return std::nullopt;
  return section.lines[*line].fields.front();
}

bool hasWin4Signature(const InfFile& file) {
  std::optional<std::string> signature = versionEntry(file, "Signature");
  for (const char* known : kWin4Signatures)
    if (signature && winapi::equalsIgnoringCase(*signature, known)) return true;
  return false;
}

// Style and class as asked for: with INF_STYLE_WIN4 the file needs its signature (whatever
// other style is asked for too), and a class asked for must be the Class of [Version]. 0 when
// the file will do. Other style bits are not looked at.
DWORD styleProblem(const InfFile& file, LPCSTR infClass, DWORD style) {
  if ((style & INF_STYLE_WIN4) && !hasWin4Signature(file)) return ERROR_WRONG_INF_STYLE;
  if (!infClass) return ERROR_SUCCESS;
  std::optional<std::string> fileClass = versionEntry(file, "Class");
  return fileClass && winapi::equalsIgnoringCase(*fileClass, fromAnsi(infClass))
             ? ERROR_SUCCESS
             : ERROR_CLASS_MISMATCH;
}

HINF openInf(const std::string& name, LPCSTR infClass, DWORD style, PUINT errorLine) {
  winapi::MachineFile file;
  std::string path;
  for (const std::string& candidate : candidatePaths(name)) {
    path = candidate;
    file = winapi::findMachineFile(path);
    if (file.error == ERROR_SUCCESS) break;
  }
  if (file.error != ERROR_SUCCESS) return failOpen(file.error);
  std::optional<std::string> bytes =
      winapi::readFileBytes(winapi::currentMachine().files().open(file.path).get());
  if (!bytes) return failOpen(ERROR_ACCESS_DENIED);
  try {
    auto inf = std::make_unique<OpenInf>(
        InfFile::parse(*bytes, winapi::currentMachine().ansiCodePage(), path));
    if (DWORD problem = styleProblem(inf->file, infClass, style)) {
      if (errorLine) *errorLine = 0;
      return failOpen(problem);
    }
    winapi::registerHandle(inf.get(), inf.get());
    return inf.release();
  } catch (const winapi::InfError& error) {
    if (errorLine) *errorLine = error.line();
    return failOpen(error.code());
  }
}

void setContext(PINFCONTEXT context, HINF inf, std::size_t section, std::size_t line) {
  context->Inf = inf;
  context->CurrentInf = inf;
  context->Section = static_cast<UINT>(section);
  context->Line = static_cast<UINT>(line);
}

// The section of a handle and a name; nullptr with the last error set when there is none.
const InfSection* findSection(HINF handle, LPCSTR name, std::size_t* index, DWORD notFound) {
  if (!name) return failWith<const InfSection*>(ERROR_INVALID_PARAMETER, nullptr);
  const OpenInf* inf = winapi::checkHandle<OpenInf>(handle);
  if (!inf) return failWith<const InfSection*>(ERROR_INVALID_HANDLE, nullptr);
  std::optional<std::size_t> found = inf->file.sectionIndex(fromAnsi(name));
  if (!found) return failWith<const InfSection*>(notFound, nullptr);
  *index = *found;
  return &inf->file.sections()[*found];
}

BOOL findFirstLine(HINF handle, LPCSTR section, LPCSTR key, PINFCONTEXT context) {
  if (!context) return fail(ERROR_INVALID_PARAMETER);
  std::size_t index = 0;
  const InfSection* found = findSection(handle, section, &index, ERROR_LINE_NOT_FOUND);
  if (!found) return FALSE;
  std::optional<std::size_t> line =
      key ? found->findKey(fromAnsi(key))
          : (found->lines.empty() ? std::nullopt : std::optional<std::size_t>(0));
  if (!line) return fail(ERROR_LINE_NOT_FOUND);
  setContext(context, handle, index, *line);
  return TRUE;
}

struct LineRef {
  const InfFile* file;
  const InfLine* line;
};

// The line a context names; nullopt with the last error set when there is none.
std::optional<LineRef> lineAt(const INFCONTEXT* context) {
  if (!context) return failWith<std::optional<LineRef>>(ERROR_INVALID_PARAMETER, std::nullopt);
  const OpenInf* inf = winapi::checkHandle<OpenInf>(context->CurrentInf);
  if (!inf) return failWith<std::optional<LineRef>>(ERROR_INVALID_HANDLE, std::nullopt);
  const std::vector<InfSection>& sections = inf->file.sections();
  if (context->Section >= sections.size() ||
      context->Line >= sections[context->Section].lines.size())
    return failWith<std::optional<LineRef>>(ERROR_LINE_NOT_FOUND, std::nullopt);
  return LineRef{&inf->file, &sections[context->Section].lines[context->Line]};
}

// SetupAPI's rule for text it returns: RequiredSize gets the size with the terminator; a null
// buffer only asks for it; a short buffer fails with ERROR_INSUFFICIENT_BUFFER, untouched.
BOOL returnText(const std::string& utf8, PSTR buffer, DWORD size, PDWORD required) {
  std::string text = winapi::utf8ToCodePage(winapi::currentMachine().ansiCodePage(), utf8);
  DWORD needed = static_cast<DWORD>(text.size() + 1);
  if (required) *required = needed;
  if (!buffer) return TRUE;
  if (size < needed) return fail(ERROR_INSUFFICIENT_BUFFER);
  std::memcpy(buffer, text.c_str(), needed);
  return TRUE;
}

}  // namespace

extern "C" HINF WINAPI SetupOpenInfFileA(PCSTR FileName, PCSTR InfClass, DWORD InfStyle,
                                         PUINT ErrorLine) {
  using namespace winapi;
  if (auto failed = injected<HINF>("SetupOpenInfFileA", Reports::ThroughLastError)) return *failed;
  if (!FileName) return failOpen(ERROR_INVALID_PARAMETER);
  return openInf(fromAnsi(FileName), InfClass, InfStyle, ErrorLine);
}

extern "C" void WINAPI SetupCloseInfFile(HINF InfHandle) {
  using namespace winapi;
  if (injected<int>("SetupCloseInfFile", Reports::ByReturnValue)) return;
  delete takeHandle<OpenInf>(InfHandle);
}

extern "C" BOOL WINAPI SetupFindFirstLineA(HINF InfHandle, PCSTR Section, PCSTR Key,
                                           PINFCONTEXT Context) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("SetupFindFirstLineA", Reports::ThroughLastError))
    return *failed;
  return findFirstLine(InfHandle, Section, Key, Context);
}

extern "C" LONG WINAPI SetupGetLineCountA(HINF InfHandle, PCSTR Section) {
  using namespace winapi;
  if (auto failed = injected<LONG>("SetupGetLineCountA", Reports::ThroughLastError)) return *failed;
  std::size_t index = 0;
  const InfSection* section = findSection(InfHandle, Section, &index, ERROR_SECTION_NOT_FOUND);
  if (!section) return -1;
  SetLastError(ERROR_SUCCESS);
  return static_cast<LONG>(section->lines.size());
}

extern "C" BOOL WINAPI SetupGetLineByIndexA(HINF InfHandle, PCSTR Section, DWORD Index,
                                            PINFCONTEXT Context) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("SetupGetLineByIndexA", Reports::ThroughLastError))
    return *failed;
  if (!Context) return fail(ERROR_INVALID_PARAMETER);
  std::size_t index = 0;
  const InfSection* section = findSection(InfHandle, Section, &index, ERROR_LINE_NOT_FOUND);
  if (!section) return FALSE;
  if (Index >= section->lines.size()) return fail(ERROR_LINE_NOT_FOUND);
  setContext(Context, InfHandle, index, Index);
  return TRUE;
}

// With a context, its line; without one, the first line of Section (with Key, when given).
// The text is the fields after the key, joined by commas.
extern "C" BOOL WINAPI SetupGetLineTextA(PINFCONTEXT Context, HINF InfHandle, PCSTR Section,
                                         PCSTR Key, PSTR ReturnBuffer, DWORD ReturnBufferSize,
                                         PDWORD RequiredSize) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("SetupGetLineTextA", Reports::ThroughLastError)) return *failed;
  INFCONTEXT found;
  if (!Context && !findFirstLine(InfHandle, Section, Key, &found)) return FALSE;
  std::optional<LineRef> at = lineAt(Context ? Context : &found);
  if (!at) return FALSE;
  std::string text;
  for (const std::string& field : at->line->fields)
    text += (&field == &at->line->fields.front() ? "" : ",") + at->file->substitute(field);
  return returnText(text, ReturnBuffer, ReturnBufferSize, RequiredSize);
}

// Field 0 is the key; a field the line does not have gives FALSE and leaves the last error.
extern "C" BOOL WINAPI SetupGetStringFieldA(PINFCONTEXT Context, DWORD FieldIndex,
                                            PSTR ReturnBuffer, DWORD ReturnBufferSize,
                                            PDWORD RequiredSize) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("SetupGetStringFieldA", Reports::ThroughLastError))
    return *failed;
  std::optional<LineRef> at = lineAt(Context);
  if (!at) return FALSE;
  const InfLine& line = *at->line;
  const std::string* field = FieldIndex == 0                    ? (line.key ? &*line.key : nullptr)
                             : FieldIndex <= line.fields.size() ? &line.fields[FieldIndex - 1]
                                                                : nullptr;
  if (!field) return FALSE;
  return returnText(at->file->substitute(*field), ReturnBuffer, ReturnBufferSize, RequiredSize);
}
