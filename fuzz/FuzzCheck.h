#pragma once

// What the fuzz targets share: a broken promise ends the run with its reason, so that libFuzzer
// keeps the input that broke it.

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "vb/VbError.h"

namespace tovrand::fuzz {

[[noreturn]] inline void broken(std::string_view promise) {
  std::fprintf(stderr, "broken: %.*s\n", static_cast<int>(promise.size()), promise.data());
  std::abort();
}

inline void require(bool kept, std::string_view promise) {
  if (!kept) broken(promise);
}

// The result of a conversion that may raise a VbError; nullopt when it did. Any other exception
// leaves the target, which libFuzzer reports as a crash: a conversion must raise nothing else.
template <class F>
auto attempt(F&& f, std::int32_t* number = nullptr) -> std::optional<decltype(f())> {
  try {
    return f();
  } catch (const VbError& e) {
    if (number) *number = e.number();
    return std::nullopt;
  }
}

}  // namespace tovrand::fuzz
