// OLE Automation dates (DATE): days since 1899-12-30 as a double, the fraction being the time
// of day. Before that day the whole part counts back while the fraction still counts forward,
// so -1.25 is 1899-12-29 06:00. Automation knows the years 100 to 9999.
#ifndef VRX_WINAPI_OLE_DATE_H
#define VRX_WINAPI_OLE_DATE_H

#include <optional>
#include <string_view>

#include "winapi/support/calendar.h"

namespace winapi {

// The date of "YYYY-MM-DD" or "YYYY-MM-DDThh:mm:ss"; nullopt for any other text or a date
// that automation does not know.
std::optional<double> oleDateFromText(std::string_view text);

// The civil time of `date`, to the nearest second; nullopt outside the years 100 to 9999.
std::optional<CivilTime> civilFromOleDate(double date);

}  // namespace winapi

#endif
