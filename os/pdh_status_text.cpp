#include "os/pdh_status_text.h"

#include <map>

namespace installedapps_col {

namespace {

const std::map<unsigned int, const char*> kStatusTexts = {
    {0x00000000, "pdhStatus=ERROR_SUCCESS"},
    {0x800007D2,
     "pdhStatus=PDH_MORE_DATA  The supplied buffer was not large enough to store all of the "
     "counter data. Allocate a larger buffer and execute the function again. "},
    {0xC0000BBD, "pdhStatus=PDH_INVALID_ARGUMENT"},
    {0xC0000BBC, "pdhStatus=PDH_INVALID_HANDLE"},
    {0xC0000BBB, "pdhStatus=PDH_MEMORY_ALLOCATION_FAILURE"},
    {0x800007D0,
     "pdhStatus=PDH_CSTATUS_NO_MACHINE  PDH was unable to connect to the machine specified in "
     "the counter path."},
    {0xC0000BB8,
     "pdhStatus=PDH_CSTATUS_NO_OBJECT  The specified machine was found, but no matching "
     "performance object was found on that machine."},
    {0x800007D1,
     "pdhStatus=PDH_CSTATUS_NO_INSTANCE  The specified instance was not found in the object."},
    {0xC0000BB9,
     "pdhStatus=PDH_CSTATUS_NO_COUNTER  The specified counter was not found in the specified "
     "object."},
    {0xC0000BBA,
     "pdhStatus=PDH_CSTATUS_INVALID_DATA  The counter was successfully found, but the data "
     "returned is not valid."},
    {0x00000001,
     "pdhStatus=PDH_CSTATUS_NEW_DATA  The data for the counter was returned successfully and is "
     "different from the last time the counter was read."},
    {0x800007D3,
     "pdhStatus=PDH_CSTATUS_ITEM_NOT_VALIDATED The counter has been added to the query, but has "
     "not been validated nor accessed."},
    {0xC0000BBF,
     "pdhStatus=PDH_CSTATUS_NO_COUNTERNAME No counter name was specified in the query."},
    {0x800007D6,
     "pdhStatus=PDH_CALC_NEGATIVE_DENOMINATOR A counter has a negative denominator value."},
    {0x800007D7, "pdhStatus=PDH_CALC_NEGATIVE_TIMEBASE A counter has a negative timebase value."},
    {0x800007D8, "pdhStatus=PDH_CALC_NEGATIVE_VALUE A counter has a negative value."},
    {0xC0000BC0, "pdhStatus=PDH_CSTATUS_BAD_COUNTERNAME The counter path format is incorrect."},
};

}  // namespace

std::string pdhStatusText(unsigned int status) {
  auto row = kStatusTexts.find(status);
  if (row != kStatusTexts.end()) return row->second;
  return "Unable to Determine pdhStatus (pdhStatus= " + std::to_string(static_cast<int>(status)) +
         ")";
}

}  // namespace installedapps_col
