#pragma once

#include <chrono>

namespace tovrand {

// Lets the calling thread wait, on every platform the component is built for (the Windows build's
// thread model has no std::this_thread).
void pauseFor(std::chrono::milliseconds duration);

}  // namespace tovrand
