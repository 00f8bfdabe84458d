#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include "frame/Host.h"
#include "frame/Members.h"

namespace tovrand {

// The registered classes, iterated and indexed as ClassInfo (each the class's own table).
class ClassList {
 public:
  class Iterator {
   public:
    explicit Iterator(const ClassInfo* const* at) : at_(at) {}
    const ClassInfo& operator*() const { return **at_; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const ClassInfo* const* at_;
  };

  explicit ClassList(std::span<const ClassInfo* const> classes) : classes_(classes) {}
  Iterator begin() const { return Iterator(classes_.data()); }
  Iterator end() const { return Iterator(classes_.data() + classes_.size()); }
  std::size_t size() const { return classes_.size(); }
  const ClassInfo& operator[](std::size_t i) const { return *classes_[i]; }

 private:
  std::span<const ClassInfo* const> classes_;
};

// The four classes in the order of the type library.
ClassList componentClasses();
// By class name or ProgID, exactly as written.
const ClassInfo* findComponentClass(std::string_view name);
// The class whose table holds `member`.
const ClassInfo& componentClassOf(const MemberInfo& member);

// Creates an object of one of the four classes for late-bound calls (the command line, the COM
// shell). Creation opens the connection; its failure propagates as a VbError.
std::unique_ptr<DispatchObject> createObject(const ClassInfo& cls, std::shared_ptr<Host> host);

}  // namespace tovrand
