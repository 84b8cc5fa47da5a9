// DLLs: the system DLLs the collector loads exist as fake modules, whose exports are the
// functions of this layer (exports.cpp). kernel32 and ntdll are loaded for the whole process;
// the others from LoadLibrary until the matching FreeLibrary, as on Windows.
#include <mutex>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/kernel32/exports.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/handles.h"
#include "winapi/support/module_names.h"

namespace {

using winapi::HandleKind;

struct Module : winapi::HandleObject {
  static constexpr HandleKind kKind = HandleKind::Module;
  Module(const char* dll, bool isPinned) : HandleObject(kKind), name(dll), pinned(isPinned) {}
  bool loaded() const { return pinned || references > 0; }

  const char* name;    // canonical; "" for the program itself
  bool pinned;         // loaded for the whole process
  int references = 0;  // LoadLibrary calls not yet matched by FreeLibrary
};

Module modules[] = {
    {"", true},
    {"kernel32.dll", true},
    {"ntdll.dll", true},
    {"advapi32.dll", false},
    {"psapi.dll", false},
    {"pdh.dll", false},
    {"netapi32.dll", false},
    {"setupapi.dll", false},
    {"version.dll", false},
    {"ole32.dll", false},
    {"oleaut32.dll", false},
    {"user32.dll", false},
};
Module& program = modules[0];
std::mutex referencesMutex;

// Every LOAD_* flag Windows defines; LOAD_WITH_ALTERED_SEARCH_PATH excludes the
// LOAD_LIBRARY_SEARCH_* ones.
constexpr DWORD kLoadFlags = 0x00003FFB;
constexpr DWORD kSearchFlags = 0x00001F00;

void registerModules() {
  static const bool registered = [] {
    for (Module& module : modules) winapi::registerHandle(&module, &module);
    return true;
  }();
  (void)registered;
}

HMODULE handleOf(Module& module) { return reinterpret_cast<HMODULE>(&module); }

Module* moduleOf(HMODULE handle) {
  registerModules();
  return winapi::checkHandle<Module>(handle);
}

// The module of a DLL name, unless the machine says that DLL is missing.
Module* findModule(const char* name) {
  std::string dll = winapi::canonicalDllName(name);
  if (winapi::currentMachine().isMissing(dll)) return nullptr;
  for (Module& module : modules)
    if (dll == module.name) return &module;
  return nullptr;
}

bool validLoadFlags(DWORD flags) {
  return (flags & ~kLoadFlags) == 0 &&
         !((flags & LOAD_WITH_ALTERED_SEARCH_PATH) && (flags & kSearchFlags));
}

HMODULE loadModule(LPCSTR name, HANDLE file, DWORD flags) {
  if (!name || file || !validLoadFlags(flags)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  Module* module = findModule(name);
  if (!module) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  std::lock_guard<std::mutex> lock(referencesMutex);
  ++module->references;
  return handleOf(*module);
}

bool isOrdinal(LPCSTR name) { return reinterpret_cast<std::uintptr_t>(name) >> 16 == 0; }

}  // namespace

extern "C" HMODULE WINAPI LoadLibraryExA(LPCSTR lpLibFileName, HANDLE hFile, DWORD dwFlags) {
  using namespace winapi;
  if (auto failed = injected<HMODULE>("LoadLibraryExA", Reports::ThroughLastError)) return *failed;
  return loadModule(lpLibFileName, hFile, dwFlags);
}

extern "C" HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName) {
  using namespace winapi;
  if (auto failed = injected<HMODULE>("LoadLibraryA", Reports::ThroughLastError)) return *failed;
  return loadModule(lpLibFileName, nullptr, 0);
}

extern "C" HMODULE WINAPI GetModuleHandleA(LPCSTR lpModuleName) {
  using namespace winapi;
  if (auto failed = injected<HMODULE>("GetModuleHandleA", Reports::ThroughLastError))
    return *failed;
  registerModules();
  if (!lpModuleName) return handleOf(program);
  Module* module = findModule(lpModuleName);
  std::lock_guard<std::mutex> lock(referencesMutex);
  if (!module || !module->loaded()) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  return handleOf(*module);
}

extern "C" FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName) {
  using namespace winapi;
  if (auto failed = injected<FARPROC>("GetProcAddress", Reports::ThroughLastError)) return *failed;
  Module* module = hModule ? moduleOf(hModule) : &program;
  bool loaded = false;
  if (module) {
    std::lock_guard<std::mutex> lock(referencesMutex);
    loaded = module->loaded();
  }
  if (!loaded) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  if (isOrdinal(lpProcName)) {
    // Nothing here is exported by ordinal.
    SetLastError(ERROR_INVALID_ORDINAL);
    return nullptr;
  }
  FARPROC address = currentMachine().isMissing(module->name, lpProcName)
                        ? nullptr
                        : findExport(module->name, lpProcName);
  if (!address) SetLastError(ERROR_PROC_NOT_FOUND);
  return address;
}

extern "C" BOOL WINAPI FreeLibrary(HMODULE hLibModule) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("FreeLibrary", Reports::ThroughLastError)) return *failed;
  if (!hLibModule) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  Module* module = moduleOf(hLibModule);
  std::lock_guard<std::mutex> lock(referencesMutex);
  if (!module || !module->loaded()) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
  }
  if (module->references > 0) --module->references;
  return TRUE;
}
