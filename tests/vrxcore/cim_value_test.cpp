#include <gtest/gtest.h>

#include "host/cim_interfaces.h"

namespace NZARVEK20 {
namespace {

EVRXStatusCode codeOf(const std::function<void()>& step) {
  try {
    step();
  } catch (const TVRXException& e) {
    return e.GetStatusCode();
  }
  return VRX_OK;
}

TCIMValue fromText(ECIMType type, const std::string& text) {
  return TCIMValue(type, text, nullptr);
}

TEST(CIMValue, TextIsReadStrictlyByType) {
  EXPECT_EQ(fromText(CIM_UINT8, "255").GetUnsigned(), 255u);
  EXPECT_EQ(fromText(CIM_UINT64, "18446744073709551615").GetUnsigned(), 18446744073709551615ull);
  EXPECT_EQ(fromText(CIM_SINT16, "-32768").GetSigned(), -32768);
  EXPECT_EQ(fromText(CIM_SINT32, "+7").GetSigned(), 7);
  EXPECT_TRUE(fromText(CIM_BOOLEAN, "TRUE").GetBoolean());
  EXPECT_FALSE(fromText(CIM_BOOLEAN, "fAlSe").GetBoolean());
  EXPECT_EQ(fromText(CIM_STRING, "").GetString(), "");
  EXPECT_FALSE(fromText(CIM_STRING, "").IsNull());

  for (const auto& bad :
       std::vector<std::pair<ECIMType, std::string>>{{CIM_UINT8, "256"},
                                                     {CIM_UINT16, "-1"},
                                                     {CIM_UINT32, "12a"},
                                                     {CIM_UINT32, " 12"},
                                                     {CIM_UINT32, ""},
                                                     {CIM_UINT32, "+5"},
                                                     {CIM_UINT64, "18446744073709551616"},
                                                     {CIM_SINT8, "128"},
                                                     {CIM_SINT64, "-"},
                                                     {CIM_BOOLEAN, "yes"},
                                                     {CIM_BOOLEAN, "1"},
                                                     {CIM_REAL64, "nan"},
                                                     {CIM_REAL64, "1.5x"},
                                                     {CIM_CHAR16, "ab"},
                                                     {CIM_NONE, "x"}})
    EXPECT_EQ(codeOf([&] { fromText(bad.first, bad.second); }), VRX_TYPE_MISMATCH)
        << bad.second << " as " << TCIMType(bad.first).ToString();
  EXPECT_EQ(codeOf([] { fromText(CIM_DATETIME, "2010"); }), VRX_INVALID_DATETIME);
}

TEST(CIMValue, TypesRoundTripThroughTheirNames) {
  for (unsigned int number = CIM_BOOLEAN; number <= CIM_REFERENCE; ++number) {
    const TCIMType type(static_cast<ECIMType>(number));
    EXPECT_EQ(static_cast<ECIMType>(TCIMType(type.ToString())), static_cast<ECIMType>(number));
  }
  EXPECT_EQ(static_cast<ECIMType>(TCIMType()), CIM_NONE);
  EXPECT_EQ(codeOf([] { TCIMType("uint128"); }), VRX_TYPE_MISMATCH);
}

TEST(CIMValue, IntegersConvertOnlyWithinRange) {
  EXPECT_EQ(TCIMValue(300u).ConvertTo(CIM_UINT16).GetUnsigned(), 300u);
  EXPECT_EQ(TCIMValue(-5).ConvertTo(CIM_SINT8).GetSigned(), -5);
  EXPECT_EQ(codeOf([] { TCIMValue(300u).ConvertTo(CIM_UINT8); }), VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([] { TCIMValue(-1).ConvertTo(CIM_UINT64); }), VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([] { TCIMValue(18446744073709551615ull).ConvertTo(CIM_SINT64); }),
            VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([] { TCIMValue("5").ConvertTo(CIM_UINT32); }), VRX_TYPE_MISMATCH);
  EXPECT_TRUE(TCIMValue().ConvertTo(CIM_UINT8).IsNull());
}

TEST(CIMValue, ArraysTakeTheirCountAndConvertElements) {
  const std::vector<TCIMValue> elements = {TCIMValue(1u), TCIMValue(2u), TCIMValue(3u)};
  const TCIMValue array(CIM_UINT16, 2, elements);
  ASSERT_TRUE(array.IsArray());
  ASSERT_EQ(array.GetElements().size(), 2u);
  EXPECT_EQ(static_cast<ECIMType>(array.GetElements()[1].GetType()), CIM_UINT16);
  EXPECT_EQ(static_cast<std::string>(array), "1,2");
  EXPECT_EQ(codeOf([&] { TCIMValue(CIM_UINT16, 4, elements); }), VRX_INVALID_PARAMETER);
  EXPECT_EQ(codeOf([] { TCIMValue(CIM_STRING, 1, {TCIMValue(1u)}); }), VRX_TYPE_MISMATCH);
}

TEST(CIMValue, NullReadsAsEmptyTextAndEqualityIsTyped) {
  EXPECT_TRUE(TCIMValue().IsNull());
  EXPECT_EQ(static_cast<std::string>(TCIMValue()), "");
  EXPECT_TRUE(TCIMValue(TCIMDateTime()).IsNull());
  EXPECT_EQ(TCIMValue(5u), TCIMValue(5u));
  EXPECT_NE(TCIMValue(5u), TCIMValue(static_cast<unsigned long long>(5)));
  EXPECT_NE(TCIMValue("a"), TCIMValue("A"));
}

TEST(CIMValue, EachKindReadsBackAndOtherKindsReadEmpty) {
  const TCIMValue number(7u), text("x"), path(TCIMReference::Parse("C.K=1"));
  EXPECT_EQ(number.GetUnsigned(), 7u);
  EXPECT_EQ(number.GetSigned(), 0);
  EXPECT_FALSE(number.GetBoolean());
  EXPECT_EQ(number.GetString(), "");
  EXPECT_TRUE(number.GetDateTime().IsNull());
  EXPECT_TRUE(number.GetReference().IsNull());
  EXPECT_TRUE(number.GetElements().empty());
  EXPECT_EQ(text.GetUnsigned(), 0u);
  EXPECT_EQ(text.GetReal(), 0.0);
  EXPECT_EQ(path.GetReference().ToString(), "C.K=1");
  EXPECT_EQ(TCIMValue(-3).ConvertTo(CIM_SINT64).GetSigned(), -3);

  // A copy of an array is a value of its own: replacing one leaves the other.
  TCIMValue array(CIM_UINT16, 2, {TCIMValue(1u), TCIMValue(2u)});
  TCIMValue copy = array;
  copy.Set(CIM_UINT16, 1, {TCIMValue(9u)});
  EXPECT_EQ(static_cast<std::string>(array), "1,2");
  EXPECT_EQ(static_cast<std::string>(copy), "9");
  array.Set(CIM_UINT32, 1, array.GetElements());
  EXPECT_EQ(static_cast<std::string>(array), "1");
  EXPECT_EQ(static_cast<ECIMType>(array.GetElements()[0].GetType()), CIM_UINT32);
}

TEST(CIMDateTime, TextIsValidatedStrictly) {
  EXPECT_EQ(TCIMDateTime("20100131000000.000000+000").ToString(), "20100131000000.000000+000");
  EXPECT_EQ(TCIMDateTime("20000229235959.999999-999").GetUtcOffset(), -999);
  const TCIMDateTime interval("00000001010101.000000:000");
  EXPECT_TRUE(interval.IsInterval());
  EXPECT_EQ(interval.GetDay(), 1u);
  for (const char* bad :
       {"2010013100000.000000+000", "20100131000000.000000+0000", "20101331000000.000000+000",
        "20100132000000.000000+000", "19000229000000.000000+000", "20100431000000.000000+000",
        "20100131240000.000000+000", "20100131006000.000000+000", "20100131000060.000000+000",
        "20100131000000,000000+000", "20100131000000.000000*000", "2010013100000a.000000+000",
        "00000001010101.000000:001", "00000001250101.000000:000", ""})
    EXPECT_EQ(codeOf([&] { TCIMDateTime{std::string(bad)}; }), VRX_INVALID_DATETIME) << bad;
}

TEST(CIMDateTime, PartsAreValidated) {
  EXPECT_EQ(TCIMDateTime(2026, 11, 22, 10, 15, 30, 5, -480).ToString(),
            "20261122101530.000005-480");
  EXPECT_EQ(TCIMDateTime(12, 3, 4, 5, 6).ToString(), "00000012030405.000006:000");
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 13, 1, 0, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 0, 1, 0, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 32, 0, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 2, 29, 0, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(TCIMDateTime(2024, 2, 29, 0, 0, 0, 0, 0).ToString(), "20240229000000.000000+000");
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 1, 24, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 1, 0, 60, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 1, 0, 0, 60, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 1, 0, 0, 0, 0, 1000); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(2026, 1, 1, 0, 0, 0, 0, -1000); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(codeOf([] { TCIMDateTime(100000000u, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  // The largest parts survive however small they are kept.
  EXPECT_EQ(TCIMDateTime(9999, 12, 31, 23, 59, 59, 999999, -999).ToString(),
            "99991231235959.999999-999");
  EXPECT_EQ(TCIMDateTime(99999999u, 23, 59, 59, 999999).ToString(), "99999999235959.999999:000");
  TCIMDateTime kept(2026, 1, 1, 0, 0, 0, 0, 0);
  EXPECT_EQ(codeOf([&] { kept.Set(2026, 2, 1, 25, 0, 0, 0, 0); }), VRX_INVALID_DATETIME);
  EXPECT_EQ(kept.ToString(), "20260101000000.000000+000");
}

TEST(CIMReference, PathsSortKeysQuoteAndEscape) {
  const TCIMReference inner(
      "QELTO_ComputerSystem",
      {{"Name", TCIMValue("WKS-042")}, {"CreationClassName", TCIMValue("QELTO_ComputerSystem")}});
  EXPECT_EQ(inner.ToString(),
            "QELTO_ComputerSystem.CreationClassName=\"QELTO_ComputerSystem\",Name=\"WKS-042\"");
  const TCIMReference outer("X", {{"name", TCIMValue("a\"b\\c")},
                                  {"Count", TCIMValue(7u)},
                                  {"csName", TCIMValue(true)},
                                  {"Part", TCIMValue(inner)}});
  const std::string text = outer.ToString();
  EXPECT_EQ(text,
            "X.Count=7,csName=TRUE,name=\"a\\\"b\\\\c\",Part=\"QELTO_ComputerSystem."
            "CreationClassName=\\\"QELTO_ComputerSystem\\\",Name=\\\"WKS-042\\\"\"");
  EXPECT_EQ(TCIMReference::Parse(text), outer);
  EXPECT_EQ(TCIMReference::Parse("x.COUNT=7,CSNAME=TRUE,NAME=\"a\\\"b\\\\c\",part=\"" +
                                 std::string("QELTO_ComputerSystem.CreationClassName=\\\"QELTO_"
                                             "ComputerSystem\\\",Name=\\\"WKS-042\\\"\"")),
            outer);
  EXPECT_NE(TCIMReference::Parse("X.Count=8,csName=TRUE,name=\"a\",Part=\"\""), outer);
  // '_' sorts between upper and lower case letters unless case is ignored.
  EXPECT_EQ(TCIMReference("Y", {{"Zed", TCIMValue(1u)},
                                {"_id", TCIMValue(2u)},
                                {"ab", TCIMValue(3u)},
                                {"A", TCIMValue(4u)}})
                .ToString(),
            "Y._id=2,A=4,ab=3,Zed=1");
  for (const char* bad : {"", ".A=1", "X.A", "X.A=\"open", "X.A=1B=2", "X.A=maybe"})
    EXPECT_EQ(codeOf([&] { TCIMReference::Parse(bad); }), VRX_INVALID_PARAMETER) << bad;
}

}  // namespace
}  // namespace NZARVEK20
