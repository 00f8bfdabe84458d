#include "frame/Pause.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <thread>
#endif

namespace tovrand {

void pauseFor(std::chrono::milliseconds duration) {
  if (duration.count() <= 0) return;
#ifdef _WIN32
  ::Sleep(static_cast<DWORD>(duration.count()));
#else
  std::this_thread::sleep_for(duration);
#endif
}

}  // namespace tovrand
