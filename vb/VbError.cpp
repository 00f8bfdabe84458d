#include "vb/VbError.h"

#include <new>
#include <utility>

namespace tovrand {

VbError::VbError(std::int32_t number, std::string description)
    : std::runtime_error(description), number_(number), description_(std::move(description)) {}

VbError VbError::of(std::int32_t number) {
  switch (number) {
    case vberr::kInvalidProcedureCall:
      return {number, "Invalid procedure call or argument"};
    case vberr::kOverflow:
      return {number, "Overflow"};
    case vberr::kSubscriptOutOfRange:
      return {number, "Subscript out of range"};
    case vberr::kDivisionByZero:
      return {number, "Division by zero"};
    case vberr::kTypeMismatch:
      return {number, "Type mismatch"};
    case vberr::kObjectNotSet:
      return {number, "Object variable or With block variable not set"};
    case vberr::kInvalidUseOfNull:
      return {number, "Invalid use of Null"};
    case vberr::kObjectRequired:
      return {number, "Object required"};
    case vberr::kNoCurrentRecord:
      return {number,
              "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
              "requires a current record."};
    case vberr::kItemNotFound:
      return {number,
              "Item cannot be found in the collection corresponding to the requested name or ordinal."};
    case vberr::kNotUpdatable:
      return {number,
              "Current Recordset does not support updating. This may be a limitation of the provider, or of "
              "the selected locktype."};
    case vberr::kObjectClosed:
      return {number, "Operation is not allowed when the object is closed."};
    case vberr::kObjectOpen:
      return {number, "Operation is not allowed when the object is open."};
    case vberr::kMultipleStep:
      return {number, "Multiple-step operation generated errors. Check each status value."};
    default:
      return {number, "Application-defined or object-defined error"};
  }
}

VbError toVbError(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const VbError& e) {
    return e;
  } catch (const std::bad_alloc&) {
    return {7, "Out of memory"};
  } catch (const std::exception& e) {
    return {vberr::kProviderError, e.what()};
  } catch (...) {
    return {vberr::kProviderError, "Unspecified error"};
  }
}

}  // namespace tovrand
