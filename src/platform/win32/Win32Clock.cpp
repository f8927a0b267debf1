#include "platform/win32/Win32Clock.h"

#include <windows.h>

namespace quorvane::platform::win32 {

double Win32Clock::SecondsSinceMidnight() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
}

}  // namespace quorvane::platform::win32
