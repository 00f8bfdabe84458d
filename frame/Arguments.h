#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frame/Members.h"
#include "vb/VbError.h"

namespace tovrand {

// Reading the arguments of a late-bound call as the parameter kinds of the member table. A value of
// another kind raises 13 Type mismatch, as a VB caller would get.

inline const Value& valueArg(const Argument& arg) {
  if (const Value* v = std::get_if<Value>(&arg)) return *v;
  throw VbError::of(vberr::kTypeMismatch);
}
inline double doubleArg(const Argument& arg) {
  return CDbl(valueArg(arg));
}
inline std::string stringArg(const Argument& arg) {
  return CStr(valueArg(arg));
}
inline std::int16_t integerArg(const Argument& arg) {
  return CInt(valueArg(arg));
}
inline VbDate dateArg(const Argument& arg) {
  return CDate(valueArg(arg));
}

// The entity argument as a typed view of the caller's object.
template <class T>
T entityArg(const Argument& arg) {
  if (const Entity* e = std::get_if<Entity>(&arg)) return T(*e);
  throw VbError::of(vberr::kTypeMismatch);
}

inline Collection& collectionArg(const Argument& arg) {
  if (const auto* c = std::get_if<std::shared_ptr<Collection>>(&arg)) {
    if (*c) return **c;
    throw VbError::of(vberr::kObjectNotSet);
  }
  throw VbError::of(vberr::kTypeMismatch);
}

inline std::vector<double>& doubleArrayArg(Argument& arg) {
  if (auto* a = std::get_if<std::vector<double>>(&arg)) return *a;
  throw VbError::of(vberr::kTypeMismatch);
}

}  // namespace tovrand
