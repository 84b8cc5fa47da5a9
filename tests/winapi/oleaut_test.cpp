#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/comdef.h"
#include "winapi/include/windows.h"

namespace {

TEST(OleAut, BstrsKeepTheirLength) {
  BSTR text = SysAllocString(L"Mise \u00e0 jour");
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 11u);
  EXPECT_EQ(std::wstring(text), L"Mise \u00e0 jour");
  SysFreeString(text);

  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);

  _bstr_t owned(L"ROOT\\CIMV2");
  _bstr_t copy = owned;
  EXPECT_EQ(static_cast<const wchar_t*>(copy), static_cast<const wchar_t*>(owned));
  EXPECT_EQ(copy.length(), 10u);
  EXPECT_EQ(_bstr_t(nullptr).length(), 0u);
}

TEST(OleAut, BstrThatCannotBeMadeThrowsComError) {
  CurrentMachine machine(nlohmann::json::parse(R"({"fail": {"SysAllocString": 0}})"));
  EXPECT_EQ(SysAllocString(L"WQL"), nullptr);
  try {
    _bstr_t text(L"WQL");
    ADD_FAILURE() << "made a BSTR";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
  }
}

TEST(OleAut, VariantClearFreesTextAndEmpties) {
  VARIANT value;
  VariantInit(&value);
  EXPECT_EQ(value.vt, VT_EMPTY);
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocString(L"text");
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(VariantClear(&value), S_OK);

  value.vt = 0x7FF;
  EXPECT_EQ(VariantClear(&value), DISP_E_BADVARTYPE);
  EXPECT_EQ(value.vt, 0x7FF);
  EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
}

TEST(OleAut, VariantTimeToSystemTimeSplitsAutomationDates) {
  const struct {
    double date;
    SYSTEMTIME expected;  // year, month, day of week, day, hour, minute, second, 0
  } cases[] = {
      {0.0, {1899, 12, 6, 30, 0, 0, 0, 0}},
      {39819.0, {2009, 1, 2, 6, 0, 0, 0, 0}},
      {39819.75, {2009, 1, 2, 6, 18, 0, 0, 0}},
      {-1.25, {1899, 12, 5, 29, 6, 0, 0, 0}},
      {2.5, {1900, 1, 1, 1, 12, 0, 0, 0}},
      {0.99999999, {1899, 12, 0, 31, 0, 0, 0, 0}},  // to the nearest second
      {1.4 / 86400, {1899, 12, 6, 30, 0, 0, 1, 0}},
      {-657434.0, {100, 1, 5, 1, 0, 0, 0, 0}},
      {2958465.5, {9999, 12, 5, 31, 12, 0, 0, 0}},
  };
  for (const auto& test : cases) {
    SYSTEMTIME time;
    std::memset(&time, 0xAB, sizeof time);
    ASSERT_TRUE(VariantTimeToSystemTime(test.date, &time)) << test.date;
    EXPECT_EQ(std::memcmp(&time, &test.expected, sizeof time), 0) << test.date;
  }
  for (double outside : {-657435.0, 2958466.0, 2958465.999999999, std::nan("")}) {
    SYSTEMTIME time;
    std::memset(&time, 0xAB, sizeof time);
    EXPECT_FALSE(VariantTimeToSystemTime(outside, &time)) << outside;
    EXPECT_EQ(time.wYear, 0xABAB);
  }
  EXPECT_FALSE(VariantTimeToSystemTime(1.0, nullptr));
}

}  // namespace
