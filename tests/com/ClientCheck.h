#pragma once

// The checks of the Wine client programs: each failed check prints a FAIL line; the program ends
// with PASS (exit 0) only when none failed. Wine can end a program with status 0 after a failure,
// so the runner requires the PASS line.

#include <windows.h>

#include <oleauto.h>

#include <cstdio>
#include <string>

namespace client {

inline int& failures() {
  static int count = 0;
  return count;
}

inline void fail(const char* file, int line, const std::string& what) {
  ++failures();
  std::printf("FAIL %s:%d: %s\n", file, line, what.c_str());
  std::fflush(stdout);
}

inline std::string hex(HRESULT hr) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%08lX", static_cast<unsigned long>(hr));
  return buffer;
}

inline std::string utf8(const wchar_t* text, int length = -1) {
  if (!text) return {};
  int n = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<std::size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), n, nullptr, nullptr);
  if (length < 0 && !out.empty()) out.pop_back();
  return out;
}

inline std::wstring wide(const std::string& text) {
  int n = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<std::size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n);
  return out;
}

inline int finish(const char* name) {
  if (failures() == 0) {
    std::printf("%s: all checks passed\nPASS\n", name);
    std::fflush(stdout);
    return 0;
  }
  std::printf("%s: %d check(s) failed\n", name, failures());
  std::fflush(stdout);
  return 1;
}

}  // namespace client

#define CHECK(cond)                                                    \
  do {                                                                 \
    if (!(cond)) client::fail(__FILE__, __LINE__, "CHECK(" #cond ")"); \
  } while (0)
#define CHECK_EQ(a, b)                                                               \
  do {                                                                               \
    auto va_ = (a);                                                                  \
    auto vb_ = (b);                                                                  \
    if (!(va_ == vb_)) client::fail(__FILE__, __LINE__, "CHECK_EQ(" #a ", " #b ")"); \
  } while (0)
#define CHECK_HR(expr, expected)                                                                       \
  do {                                                                                                 \
    HRESULT hr_ = (expr);                                                                              \
    if (hr_ != (expected))                                                                             \
      client::fail(                                                                                    \
          __FILE__, __LINE__,                                                                          \
          std::string(#expr " answered ") + client::hex(hr_) + ", expected " + client::hex(expected)); \
  } while (0)
