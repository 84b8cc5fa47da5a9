#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "test_machine.h"
#include "winapi/include/comdef.h"
#include "winapi/include/wbemidl.h"
#include "winapi/include/windows.h"

namespace {

const char* const kFixes = R"({"wmi": {"Win32_QuickFixEngineering": [
    {"HotFixID": "KB1"}, {"HotFixID": "KB2"}, {"Description": "no id"}, {"HotFixID": "KB3"}]}})";

struct Outcome {
  std::string failedStep;  // empty when every step succeeded
  HRESULT result = S_OK;
  std::vector<std::wstring> hotFixIds;
};

// The connection and query the hot-fix collector makes, and its clean-up on every way out.
Outcome queryHotFixes() {
  Outcome outcome;
  auto succeeds = [&outcome](const char* step, HRESULT result) {
    if (SUCCEEDED(result)) return true;
    outcome = {step, result, {}};
    return false;
  };
  if (!succeeds("CoInitializeEx", CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return outcome;
  IWbemLocator* locator = nullptr;
  IWbemServices* services = nullptr;
  IEnumWbemClassObject* objects = nullptr;
  HRESULT security = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                          RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  bool open =
      (security == RPC_E_TOO_LATE || succeeds("CoInitializeSecurity", security)) &&
      succeeds("CoCreateInstance",
               CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                reinterpret_cast<LPVOID*>(&locator))) &&
      succeeds("ConnectServer", locator->ConnectServer(_bstr_t(L"ROOT\\CIMV2"), nullptr, nullptr,
                                                       nullptr, 0, nullptr, nullptr, &services)) &&
      succeeds("CoSetProxyBlanket",
               CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                 RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                 EOAC_NONE)) &&
      succeeds("ExecQuery",
               services->ExecQuery(
                   _bstr_t(L"WQL"), _bstr_t(L"SELECT * FROM Win32_QuickFixEngineering"),
                   WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, &objects));
  IWbemClassObject* object = nullptr;
  auto next = [&] {
    ULONG returned = 0;
    objects->Next(WBEM_INFINITE, 1, &object, &returned);
    return returned == 1;
  };
  while (open && next()) {
    VARIANT id;
    VariantInit(&id);
    object->Get(L"HotFixID", 0, &id, nullptr, nullptr);
    outcome.hotFixIds.push_back(id.vt == VT_BSTR ? id.bstrVal : L"-");
    VariantClear(&id);
    object->Release();
  }
  for (IUnknown* held : std::initializer_list<IUnknown*>{services, locator, objects})
    if (held) held->Release();
  CoUninitialize();
  return outcome;
}

// True when this thread is out of COM: joining it again is a first join.
bool threadLeftCom() {
  HRESULT hr = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  CoUninitialize();
  return hr == S_OK;
}

TEST(ComSequence, DeliversTheObjectsInOrder) {
  CurrentMachine machine(nlohmann::json::parse(kFixes));
  Outcome outcome = queryHotFixes();
  EXPECT_EQ(outcome.failedStep, "");
  EXPECT_EQ(outcome.hotFixIds, (std::vector<std::wstring>{L"KB1", L"KB2", L"-", L"KB3"}));
  EXPECT_TRUE(threadLeftCom());
}

TEST(ComSequence, EachStepFailsAsInjected) {
  const std::pair<const char*, const char*> cases[] = {
      {"CoInitializeEx", "CoInitializeEx"},       {"CoInitializeSecurity", "CoInitializeSecurity"},
      {"CoCreateInstance", "CoCreateInstance"},   {"IWbemLocator::ConnectServer", "ConnectServer"},
      {"CoSetProxyBlanket", "CoSetProxyBlanket"}, {"IWbemServices::ExecQuery", "ExecQuery"},
  };
  for (const auto& [function, step] : cases) {
    nlohmann::json description = nlohmann::json::parse(kFixes);
    description["fail"][function] = "0x80070005";
    {
      CurrentMachine machine(description);
      Outcome outcome = queryHotFixes();
      EXPECT_EQ(outcome.failedStep, step);
      EXPECT_EQ(outcome.result, static_cast<HRESULT>(0x80070005)) << step;
    }
    EXPECT_TRUE(threadLeftCom()) << step;
  }

  // A failing Next delivers nothing, and the query ends as one without objects.
  nlohmann::json description = nlohmann::json::parse(kFixes);
  description["fail"]["IEnumWbemClassObject::Next"] = "0x80041001";
  CurrentMachine machine(description);
  Outcome outcome = queryHotFixes();
  EXPECT_EQ(outcome.failedStep, "");
  EXPECT_TRUE(outcome.hotFixIds.empty());
}

TEST(Com, ThreadJoinsAndLeavesByCount) {
  void* object = nullptr;
  EXPECT_EQ(
      CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object),
      CO_E_NOTINITIALIZED);
  EXPECT_EQ(CoInitializeEx(reinterpret_cast<LPVOID>(1), COINIT_MULTITHREADED), E_INVALIDARG);
  EXPECT_EQ(CoInitializeEx(nullptr, 0x10), E_INVALIDARG);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), RPC_E_CHANGED_MODE);
  CoUninitialize();
  EXPECT_FALSE(threadLeftCom());
  CoUninitialize();
  EXPECT_TRUE(threadLeftCom());
  CoUninitialize();  // one too many does nothing
  EXPECT_TRUE(threadLeftCom());
}

TEST(Com, MakesOnlyTheLocatorInProcess) {
  CurrentMachine machine(nlohmann::json::parse(kFixes));
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  const CLSID otherClass = {0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0, 0xAA, 0, 0x4B, 0x2E, 0x25}};
  void* object = &object;
  EXPECT_EQ(CoCreateInstance(otherClass, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(
      CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_LOCAL_SERVER, IID_IWbemLocator, &object),
      REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemServices,
                             &object),
            E_NOINTERFACE);

  IUnknown* unknown = nullptr;
  ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                             IID_IUnknown, reinterpret_cast<LPVOID*>(&unknown)),
            S_OK);
  IWbemLocator* locator = nullptr;
  ASSERT_EQ(unknown->QueryInterface(IID_IWbemLocator, reinterpret_cast<void**>(&locator)), S_OK);
  EXPECT_EQ(unknown->Release(), 1u);

  // Only the objects of the WMI service are proxies.
  IWbemServices* services = nullptr;
  ASSERT_EQ(locator->ConnectServer(_bstr_t(L"root\\cimv2"), nullptr, nullptr, nullptr, 0, nullptr,
                                   nullptr, &services),
            S_OK);
  const DWORD level = RPC_C_AUTHN_LEVEL_CALL, impersonate = RPC_C_IMP_LEVEL_IMPERSONATE;
  EXPECT_EQ(CoSetProxyBlanket(locator, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, level,
                              impersonate, nullptr, EOAC_NONE),
            E_NOINTERFACE);
  EXPECT_EQ(CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, level,
                              impersonate, nullptr, EOAC_NONE),
            S_OK);
  EXPECT_EQ(services->Release(), 0u);
  EXPECT_EQ(locator->Release(), 0u);
  CoUninitialize();
}

// Security is process-wide and set once, so this runs in a process of its own.
TEST(ComDeathTest, SecurityIsSetOncePerProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto setSecurity = [](LONG services, void* reserved) {
    return CoInitializeSecurity(nullptr, services, nullptr, reserved, RPC_C_AUTHN_LEVEL_DEFAULT,
                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  };
  EXPECT_EXIT(
      {
        // Refused arguments do not use up the one setting.
        bool refused =
            setSecurity(-2, nullptr) == E_INVALIDARG && setSecurity(-1, &refused) == E_INVALIDARG;
        bool once = setSecurity(-1, nullptr) == S_OK && setSecurity(-1, nullptr) == RPC_E_TOO_LATE;
        std::exit(refused && once ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
