#include <gtest/gtest.h>

#include "frame/cim_value_builder.h"
#include "frame/date_time_parser.h"
#include "tests/frame/plugin_test_support.h"
#include "tests/vrxcore/test_schema.h"
#include "winapi/machine/machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;
using Pieces = std::vector<std::string>;

TEST(SplitString, DropsEmptyPiecesAndTrimsNothing) {
  EXPECT_EQ(splitString("a,b", ','), (Pieces{"a", "b"}));
  EXPECT_EQ(splitString(",,a,, b ,", ','), (Pieces{"a", " b "}));
  EXPECT_EQ(splitString(",,,", ','), Pieces{});
  EXPECT_EQ(splitString("", ','), Pieces{});
  EXPECT_EQ(splitString("abc", ','), Pieces{"abc"});
}

// A Pacific machine: eight hours west with a daylight rule, so dates built
// from parts carry -420 all year.
class WithPacificZone : public ::testing::Test {
 protected:
  void SetUp() override {
    registeredPlugin();
    winapi::setCurrentMachine(winapi::Machine::fromDescription(nlohmann::json::parse(R"({
      "now": "2026-07-01T12:00:00Z",
      "timeZone": {"bias": 480, "standardName": "Pacific Standard Time", "standardBias": 0,
                   "daylightName": "Pacific Daylight Time", "daylightBias": -60,
                   "standardDate": {"month": 11, "dayOfWeek": 0, "day": 1, "hour": 2},
                   "daylightDate": {"month": 3, "dayOfWeek": 0, "day": 2, "hour": 2}}})")));
  }
  std::string parse(const std::string& text) {
    return DateTimeParser(LogMessage::getInstance()).parseDateTime(text).ToString();
  }
  LogCapture log;
};

TEST_F(WithPacificZone, DatesOfEveryShape) {
  EXPECT_EQ(parse("20100131"), "20100131000000.000000+000");
  EXPECT_EQ(parse("01/31/2010"), "20100131000000.000000-420");
  EXPECT_EQ(parse("1/2/2003"), "20030102000000.000000-420");
  EXPECT_EQ(parse("01-02-2003"), "20030102000000.000000-420");
  EXPECT_EQ(parse("1/2/2003 10:15 AM"), "20030102000000.000000-420");
  // Ten digits are no date stem: seconds since 1970, in local time.
  EXPECT_EQ(parse("1262304000"), "20091231160000.000000-420");
}

TEST_F(WithPacificZone, TextThatIsNoDate) {
  EXPECT_EQ(parse("N/A"), "");
  EXPECT_EQ(parse("unknown"), "");
  EXPECT_EQ(parse("///"), "");
  EXPECT_EQ(parse("2010/01"), "");
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(parse(""), "");
  EXPECT_EQ(parse("2010-01-31"), "");  // year first reads as month 2010
  EXPECT_EQ(parse("2/30/2009"), "");   // no such day
  EXPECT_EQ(log.lines(),
            (Lines{{4,
                    "InstalledAppInfo::geNZARVEK20::TCIMValueForProperty Date time information "
                    "was generated incorrectly."},
                   {3,
                    "InstalledAppInfo::geNZARVEK20::TCIMValueForProperty Encountered an unknown "
                    "date time format -> 2010-01-31"},
                   {3,
                    "InstalledAppInfo::geNZARVEK20::TCIMValueForProperty Encountered an unknown "
                    "date time format -> 2/30/2009"}}));
}

TEST_F(WithPacificZone, SecondsAndIntervals) {
  DateTimeParser parser(LogMessage::getInstance());
  // Zero seconds stand for the zone's own offset: midnight local time.
  EXPECT_EQ(parser.dateFromSeconds(0).ToString(), "19700101000000.000000-420");
  EXPECT_EQ(parser.intervalFromSeconds(90061).ToString(), "00000001010101.000000:000");
  EXPECT_EQ(parser.intervalFromSeconds(4294967295u).ToString(), "00049710062815.000000:000");
  EXPECT_EQ(log.lines(), (Lines{{3, "GetInfo::getCIMDateTime -> dateAsLongMsg"},
                                {4, "Successfully parsed the date and/or time"}}));
}

// Pacific time is also the C runtime's own zone; these zones show that the
// machine's zone is the one read: east of UTC, with and without a daylight rule.
TEST(DateZones, OffsetsAndLocalTimesFollowTheMachinesZone) {
  registeredPlugin();
  struct Case {
    const char* zone;
    const char* fromParts;    // 01/31/2010
    const char* fromSeconds;  // 2010-07-01 00:00 UTC
    const char* fromZero;     // a zone east of UTC is no number of seconds west: 2^32 - its bias
  };
  const Case cases[] = {
      {R"({"bias": -330, "standardName": "India Standard Time"})", "20100131000000.000000+330",
       "20100701053000.000000+330", "21060207062816.000000+330"},
      {R"({"bias": -60, "standardName": "W. Europe Standard Time", "daylightBias": -60,
           "standardDate": {"month": 10, "dayOfWeek": 0, "day": 5, "hour": 3},
           "daylightDate": {"month": 3, "dayOfWeek": 0, "day": 5, "hour": 2}})",
       "20100131000000.000000+120", "20100701020000.000000+120", "21060207062816.000000+120"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.zone);
    winapi::setCurrentMachine(winapi::Machine::fromDescription(
        nlohmann::json{{"timeZone", nlohmann::json::parse(c.zone)}}));
    DateTimeParser parser(LogMessage::getInstance());
    EXPECT_EQ(parser.parseDateTime("01/31/2010").ToString(), c.fromParts);
    EXPECT_EQ(parser.dateFromSeconds(1277942400).ToString(), c.fromSeconds);
    EXPECT_EQ(parser.dateFromSeconds(0).ToString(), c.fromZero);
  }
  winapi::setCurrentMachine(nullptr);
}

TEST_F(WithPacificZone, TheSchemaTypesEachFact) {
  auto ns = makeTestNamespace();
  CIMValueBuilder builder(ns->GetClass("T_SystemSetting", {}));
  const PropertyMap built = builder.buildProperties({{"SettingID", "Path"},
                                                     {"Weight", "12"},
                                                     {"Tags", ",a,, b ,"},
                                                     {"Changed", "01/31/2010"},
                                                     {"Unknown", "dropped"}});
  EXPECT_EQ(built.size(), 4u);
  EXPECT_EQ(built.at("Weight"), TCIMValue(static_cast<unsigned short>(12)));
  EXPECT_EQ(built.at("Tags"), TCIMValue(CIM_STRING, 2, {TCIMValue("a"), TCIMValue(" b ")}));
  EXPECT_EQ(built.at("Changed").GetDateTime().ToString(), "20100131000000.000000-420");
  EXPECT_TRUE(log.lines().empty());

  EXPECT_EQ(builder.buildValue("Tags", "").GetElements().size(), 0u);
  EXPECT_TRUE(builder.buildValue("Changed", "").IsNull());
  log.clear();
  EXPECT_TRUE(builder.buildValue("Weight", "12 kg").IsNull());
  EXPECT_EQ(log.lines(),
            (Lines{{3,
                    "Error processing property Error processing property  T_SystemSetting. "
                    "Weight= 12 kg"},
                   {0, "The value does not convert to the property's type"}}));
  EXPECT_TRUE(CIMValueBuilder(nullptr).buildValue("Weight", "1").IsNull());
  EXPECT_EQ(builder.buildStringArrayValue(""), TCIMValue(CIM_STRING, 1, {TCIMValue("")}));
}

}  // namespace
}  // namespace installedapps_col
