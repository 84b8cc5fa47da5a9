// Timestamps as the engines read them: ISO 8601 in UTC, so that their text sorts in time order
// in SQLite too, where a timestamp is text.
#pragma once

#include <string>

namespace vrxstore {

// A CIM date-time's moment in UTC ("2026-11-22T09:15:30.000000+00:00" for
// "20261122101530.000000+060"); empty for an interval. Throws TVRXException for text that is not
// a CIM date-time.
std::string utcTimestamp(const std::string& cimText);
// The present moment in the same form.
std::string utcNow();

}  // namespace vrxstore
