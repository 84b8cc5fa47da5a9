// The property values of WMI objects as machine.json gives them, typed by their JSON form: a
// string is VT_BSTR, {"date": "YYYY-MM-DD"} or {"date": "YYYY-MM-DDThh:mm:ss"} is VT_DATE, an
// integer is VT_I4. A property an object does not give is not found.
#ifndef VRX_WINAPI_WMI_VALUES_H
#define VRX_WINAPI_WMI_VALUES_H

#include <nlohmann/json.hpp>
#include <string>

#include "winapi/include/wbemidl.h"

namespace winapi {

// What is wrong with a property value of machine.json, "" when nothing. The text of a date
// is checked by wmiDateProblem, as the member "date" of the value.
std::string wmiValueProblem(const nlohmann::json& value);
std::string wmiDateProblem(const nlohmann::json& date);

// Fills `variant`, which holds nothing, with a checked value; false when there is no memory
// for its text.
bool toVariant(const nlohmann::json& value, VARIANT& variant);
CIMTYPE cimTypeOf(const nlohmann::json& value);

}  // namespace winapi

#endif
