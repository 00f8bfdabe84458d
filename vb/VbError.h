#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>

namespace tovrand {

// A run-time error as the component's callers see it: Err.Number and Err.Description.
class VbError : public std::runtime_error {
 public:
  VbError(std::int32_t number, std::string description);

  // The error with the run time's or ADO's standard description for `number`.
  static VbError of(std::int32_t number);

  std::int32_t number() const { return number_; }
  const std::string& description() const { return description_; }

 private:
  std::int32_t number_;
  std::string description_;
};

namespace vberr {
// VB run-time errors
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kObjectNotSet = 91;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kObjectRequired = 424;
// ADO's own errors reach Err.Number as the plain number
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kNotUpdatable = 3251;
inline constexpr std::int32_t kObjectClosed = 3704;
inline constexpr std::int32_t kObjectOpen = 3705;
// Provider errors reach Err.Number as the whole HRESULT read as a signed 32-bit number
inline constexpr std::int32_t kMultipleStep = -2147217887;   // 0x80040E21
inline constexpr std::int32_t kProviderError = -2147467259;  // 0x80004005
}  // namespace vberr

// Any exception as the VbError a handler reports: VbErrors as they are, anything else as a
// provider error carrying its text.
VbError toVbError(std::exception_ptr error);

}  // namespace tovrand
