#include <gtest/gtest.h>

#include <string>

#include "test_machine.h"
#include "winapi/include/comdef.h"
#include "winapi/include/wbemidl.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

namespace {

constexpr HRESULT code(WBEMSTATUS status) { return static_cast<HRESULT>(status); }

const char* const kMachine = R"({"wmi": {
    "Win32_QuickFixEngineering": [
      {"Description": "Mise \u00e0 jour", "HotFixID": "KB1", "InstallDate": {"date": "2009-01-06"},
       "Updated": {"date": "2026-11-12T03:12:44"}, "Size": -5},
      {"HotFixID": "KB2"},
      {"HotFixID": "KB3"}],
    "Win32_Empty": []}})";

// A thread in COM with a locator, on the machine above.
class Wmi : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<LPVOID*>(&locator_)),
              S_OK);
  }
  void TearDown() override {
    locator_->Release();
    CoUninitialize();
  }

  HRESULT connect(const wchar_t* ns, const wchar_t* user, IWbemServices** services) {
    return locator_->ConnectServer(_bstr_t(ns), _bstr_t(user), nullptr, nullptr, 0, nullptr,
                                   nullptr, services);
  }
  HRESULT query(const wchar_t* language, const wchar_t* text, LONG flags,
                IEnumWbemClassObject** enumerator) {
    IWbemServices* services = nullptr;
    HRESULT hr = connect(L"ROOT\\CIMV2", nullptr, &services);
    if (FAILED(hr)) return hr;
    hr = services->ExecQuery(_bstr_t(language), _bstr_t(text), flags, nullptr, enumerator);
    services->Release();
    return hr;
  }
  // The first object of the fix class.
  IWbemClassObject* firstFix() {
    IEnumWbemClassObject* enumerator = nullptr;
    IWbemClassObject* object = nullptr;
    ULONG returned = 0;
    EXPECT_EQ(query(L"WQL", L"SELECT * FROM Win32_QuickFixEngineering", 0, &enumerator), S_OK);
    EXPECT_EQ(enumerator->Next(WBEM_INFINITE, 1, &object, &returned), S_OK);
    enumerator->Release();
    return object;
  }

  CurrentMachine machine_{nlohmann::json::parse(kMachine)};
  IWbemLocator* locator_ = nullptr;
};

TEST_F(Wmi, ConnectServerChecksNamespaceAndCredentials) {
  IWbemServices* services = reinterpret_cast<IWbemServices*>(&services);
  EXPECT_EQ(connect(L"ROOT\\DEFAULT", nullptr, &services), code(WBEM_E_INVALID_NAMESPACE));
  EXPECT_EQ(services, nullptr);
  EXPECT_EQ(connect(L"ROOT\\CIMV2", L"bob", &services), code(WBEM_E_LOCAL_CREDENTIALS));
  EXPECT_EQ(connect(L"ROOT\\CIMV2", nullptr, nullptr), code(WBEM_E_INVALID_PARAMETER));
  EXPECT_EQ(
      locator_->ConnectServer(nullptr, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services),
      code(WBEM_E_INVALID_PARAMETER));
  ASSERT_EQ(connect(L"root\\cimv2", L"", &services), S_OK);
  services->Release();

  // A machine without `wmi` has no WMI service to start.
  CurrentMachine noService(nlohmann::json::object());
  EXPECT_EQ(connect(L"ROOT\\CIMV2", nullptr, &services), static_cast<HRESULT>(0x80070422));
}

TEST_F(Wmi, ExecQueryAnswersSelectAllFromAClass) {
  const LONG semisync = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;
  const struct {
    const wchar_t* language;
    const wchar_t* text;
    LONG flags;
    HRESULT expected;
  } cases[] = {
      {L"WQL", L"SELECT * FROM Win32_QuickFixEngineering", semisync, S_OK},
      {L"wql", L"  select*from win32_quickfixengineering ", 0, S_OK},
      {L"WQL", L"SELECT * FROM Win32_Empty", semisync, S_OK},
      {L"SQL", L"SELECT * FROM Win32_QuickFixEngineering", 0, code(WBEM_E_INVALID_QUERY_TYPE)},
      {L"WQL", L"SELECT HotFixID FROM Win32_QuickFixEngineering", 0, code(WBEM_E_INVALID_QUERY)},
      {L"WQL", L"SELECT * FROM", 0, code(WBEM_E_INVALID_QUERY)},
      {L"WQL", L"SELECT * FROM Win32_QuickFixEngineering WHERE", 0, code(WBEM_E_INVALID_QUERY)},
      {L"WQL", L"SELECT * FROM Win32-Fix", 0, code(WBEM_E_INVALID_QUERY)},
      {L"WQL", L"SELECT * FROM Win32_Product", 0, code(WBEM_E_INVALID_CLASS)},
      {L"WQL", L"SELECT * FROM Win32_Empty", 0x40000000, code(WBEM_E_INVALID_PARAMETER)},
  };
  for (const auto& test : cases) {
    IEnumWbemClassObject* enumerator = nullptr;
    EXPECT_EQ(query(test.language, test.text, test.flags, &enumerator), test.expected) << test.text;
    EXPECT_EQ(enumerator != nullptr, test.expected == S_OK) << test.text;
    if (enumerator) enumerator->Release();
  }
}

TEST_F(Wmi, NextDeliversEachObjectOnceThenFalse) {
  IEnumWbemClassObject* enumerator = nullptr;
  ASSERT_EQ(query(L"WQL", L"SELECT * FROM Win32_QuickFixEngineering", 0, &enumerator), S_OK);
  IWbemClassObject* sentinel = reinterpret_cast<IWbemClassObject*>(&enumerator);
  IWbemClassObject* objects[3] = {sentinel, sentinel, sentinel};
  ULONG returned = 9;
  EXPECT_EQ(enumerator->Next(-2, 1, objects, &returned), code(WBEM_E_INVALID_PARAMETER));
  EXPECT_EQ(enumerator->Next(0, 1, objects, nullptr), code(WBEM_E_INVALID_PARAMETER));
  EXPECT_EQ(enumerator->Next(0, 0, objects, &returned), code(WBEM_S_FALSE));
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(enumerator->Next(0, 2, objects, &returned), code(WBEM_S_NO_ERROR));
  EXPECT_EQ(returned, 2u);
  EXPECT_EQ(enumerator->Next(WBEM_INFINITE, 2, objects + 2, &returned), code(WBEM_S_FALSE));
  EXPECT_EQ(returned, 1u);
  EXPECT_EQ(enumerator->Next(WBEM_INFINITE, 1, &sentinel, &returned), code(WBEM_S_FALSE));
  EXPECT_EQ(returned, 0u);
  enumerator->Release();

  // The objects outlive their enumerator, in the order of the machine.
  for (int i = 0; i < 3; ++i) {
    VARIANT id;
    VariantInit(&id);
    EXPECT_EQ(objects[i]->Get(L"HotFixID", 0, &id, nullptr, nullptr), S_OK);
    EXPECT_EQ(std::wstring(id.bstrVal), L"KB" + std::to_wstring(i + 1));
    VariantClear(&id);
    EXPECT_EQ(objects[i]->Release(), 0u);
  }
}

TEST_F(Wmi, GetTypesValuesByTheirJsonForm) {
  IWbemClassObject* fix = firstFix();
  VARIANT value;
  VariantInit(&value);
  CIMTYPE type = -1;
  LONG flavor = -1;
  ASSERT_EQ(fix->Get(L"description", 0, &value, &type, &flavor), S_OK);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_EQ(std::wstring(value.bstrVal), L"Mise \u00e0 jour");
  EXPECT_EQ(SysStringLen(value.bstrVal), 11u);
  EXPECT_EQ(type, 8);  // CIM_STRING
  EXPECT_EQ(flavor, 0);
  VariantClear(&value);

  ASSERT_EQ(fix->Get(L"InstallDate", 0, &value, &type, nullptr), S_OK);
  EXPECT_EQ(value.vt, VT_DATE);
  EXPECT_EQ(value.date, 39819.0);  // 2009-01-06
  EXPECT_EQ(type, 101);            // CIM_DATETIME
  ASSERT_EQ(fix->Get(L"Updated", 0, &value, nullptr, nullptr), S_OK);
  SYSTEMTIME time{};
  ASSERT_TRUE(VariantTimeToSystemTime(value.date, &time));
  EXPECT_EQ(time.wYear * 10000 + time.wMonth * 100 + time.wDay, 20261112);
  EXPECT_EQ(time.wHour * 10000 + time.wMinute * 100 + time.wSecond, 31244);

  ASSERT_EQ(fix->Get(L"Size", 0, &value, &type, nullptr), S_OK);
  EXPECT_EQ(value.vt, VT_I4);
  EXPECT_EQ(value.lVal, -5);
  EXPECT_EQ(type, 3);  // CIM_SINT32

  // An object without the property: not found, and the VARIANT stays empty.
  VariantInit(&value);
  EXPECT_EQ(fix->Get(L"InstalledBy", 0, &value, nullptr, nullptr), code(WBEM_E_NOT_FOUND));
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(fix->Get(L"HotFixID", 1, &value, nullptr, nullptr), code(WBEM_E_INVALID_PARAMETER));
  fix->Release();
}

TEST(WmiMachine, ValuesAreCheckedWhenTheMachineLoads) {
  const std::string kBadDate =
      "date: expected \"YYYY-MM-DD\" or \"YYYY-MM-DDThh:mm:ss\", from year 100 to 9999";
  const std::string kBadValue = ": expected a string, an integer or {\"date\": …}";
  const std::pair<const char*, std::string> cases[] = {
      {R"({"date": "2009-02-29"})", "." + kBadDate},
      {R"({"date": "0099-12-31"})", "." + kBadDate},
      {R"({"date": "2009-01-06T24:00:00"})", "." + kBadDate},
      {R"(3000000000)", ": expected an integer from -2147483648 to 2147483647"},
      {R"({"date": "2009-01-06", "time": 1})", kBadValue},
  };
  auto machineWith = [](const std::string& value) {
    return nlohmann::json::parse(R"({"wmi": {"C": [{"P": )" + value + "}]}}");
  };
  for (const auto& [value, problem] : cases) {
    try {
      winapi::Machine::fromDescription(machineWith(value));
      ADD_FAILURE() << value << " was taken";
    } catch (const winapi::MachineError& error) {
      EXPECT_EQ(error.what(), "machine.json: member wmi.C[0].P" + problem);
    }
  }
  EXPECT_NO_THROW(
      winapi::Machine::fromDescription(machineWith(R"({"date": "2008-02-29T23:59:59"})")));
}

}  // namespace
