// The C runtime's zone readers for the msvcrt runtime, whose import library
// (and Wine's msvcrt) lacks _get_timezone and _get_daylight although the
// variables behind them are there. Calls through the runtime's import
// slots land here.
#include <ctime>

namespace {

int getTimezone(long* secondsWest) {
  if (!secondsWest) return 22;  // EINVAL, as the runtime answers
  *secondsWest = _timezone;
  return 0;
}

int getDaylight(int* hasDaylight) {
  if (!hasDaylight) return 22;
  *hasDaylight = _daylight;
  return 0;
}

}  // namespace

extern "C" {
void* __imp__get_timezone = reinterpret_cast<void*>(&getTimezone);
void* __imp__get_daylight = reinterpret_cast<void*>(&getDaylight);
}
