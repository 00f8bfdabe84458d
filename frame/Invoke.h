#pragma once

// The member tables of the four classes are built from their methods: one entry per member binds its
// interface name, DISPID and parameters to a generic invoker, so no hand-written argument code sits
// between a late-bound call and the method.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "frame/Arguments.h"
#include "frame/DataObject.h"
#include "frame/Members.h"

namespace tovrand {

namespace invoke_detail {

template <class>
inline constexpr bool kUnknownType = false;

template <class M>
struct MethodTraits;
template <class C, class R, class... P>
struct MethodTraits<R (C::*)(P...)> {
  using Class = C;
  using Result = R;
  using Params = std::tuple<P...>;
  static constexpr std::size_t arity = sizeof...(P);
};

// How an argument is held while the method runs: Collections and arrays stay the caller's own object,
// entities are seen through their typed view, values are converted to the parameter's type.
template <class T>
auto readArgument(Argument& arg) {
  if constexpr (std::is_same_v<T, Collection>)
    return &collectionArg(arg);
  else if constexpr (std::is_same_v<T, std::vector<double>>)
    return &doubleArrayArg(arg);
  else if constexpr (std::is_same_v<T, double>)
    return doubleArg(arg);
  else if constexpr (std::is_same_v<T, std::int16_t>)
    return integerArg(arg);
  else if constexpr (std::is_same_v<T, VbDate>)
    return dateArg(arg);
  else if constexpr (std::is_same_v<T, std::string>)
    return stringArg(arg);
  else if constexpr (std::is_base_of_v<Entity, T>)
    return entityArg<T>(arg);
  else
    static_assert(kUnknownType<T>, "a parameter type the member tables cannot pass");
}

template <class P>
class Parameter {
 public:
  using T = std::remove_cvref_t<P>;
  static constexpr bool kIndirect = std::is_same_v<T, Collection> || std::is_same_v<T, std::vector<double>>;
  // A scalar the method may change: VB's ByRef hands the new value back to the caller's variable.
  static constexpr bool kWritesBack = !kIndirect && !std::is_base_of_v<Entity, T> &&
                                      std::is_lvalue_reference_v<P> &&
                                      !std::is_const_v<std::remove_reference_t<P>>;

  explicit Parameter(Argument& arg) : held_(readArgument<T>(arg)) {}

  P pass() {
    if constexpr (kIndirect)
      return *held_;
    else if constexpr (std::is_reference_v<P>)
      return held_;
    else
      return std::move(held_);
  }
  void writeBack(Argument& arg) {
    if constexpr (kWritesBack) arg = Value(held_);
  }

 private:
  decltype(readArgument<T>(std::declval<Argument&>())) held_;
};

template <class P>
consteval ParamKind kindOf() {
  using T = std::remove_cvref_t<P>;
  if constexpr (std::is_same_v<T, Collection>)
    return ParamKind::Collection;
  else if constexpr (std::is_same_v<T, std::vector<double>>)
    return ParamKind::DoubleArray;
  else if constexpr (std::is_same_v<T, double>)
    return ParamKind::Double;
  else if constexpr (std::is_same_v<T, std::int16_t>)
    return ParamKind::Integer;
  else if constexpr (std::is_same_v<T, VbDate>)
    return ParamKind::Date;
  else if constexpr (std::is_same_v<T, std::string>)
    return ParamKind::String;
  else
    return ParamKind::Entity;
}

template <class Params, std::size_t... I>
consteval bool paramsFit(std::span<const ParamInfo> params, std::index_sequence<I...>) {
  // A ByVal parameter has nothing to hand back, so its method cannot take it by modifiable reference.
  return ((params[I].kind == kindOf<std::tuple_element_t<I, Params>>() &&
           (params[I].byRef || !Parameter<std::tuple_element_t<I, Params>>::kWritesBack)) &&
          ...);
}

}  // namespace invoke_detail

// The invoker of a method: converts each argument to its parameter's type, calls the method on the
// object and writes modifiable scalars back into their arguments. Arguments are read left to right, as
// the interface orders them; nothing is written back when the method raises.
template <auto Method>
Value invoke(DataObject& object, std::span<Argument> args) {
  using Traits = invoke_detail::MethodTraits<decltype(Method)>;
  using Cls = typename Traits::Class;
  if (args.size() != Traits::arity) throw std::invalid_argument("wrong number of arguments");
  return [&]<std::size_t... I>(std::index_sequence<I...>)->Value {
    using Params = typename Traits::Params;
    // A braced list evaluates its elements in order.
    std::tuple<invoke_detail::Parameter<std::tuple_element_t<I, Params>>...> held{
        invoke_detail::Parameter<std::tuple_element_t<I, Params>>(args[I])...};
    Value result = (static_cast<Cls&>(object).*Method)(std::get<I>(held).pass()...);
    (std::get<I>(held).writeBack(args[I]), ...);
    return result;
  }
  (std::make_index_sequence<Traits::arity>{});
}

// One entry of a member table. The parameter list must match the method's parameters in number and
// kind, and the return kind follows from the method's result, or the table does not compile.
template <auto Method, std::size_t N>
consteval MemberInfo member(std::string_view name, std::int32_t dispid, const ParamInfo (&params)[N]) {
  using Traits = invoke_detail::MethodTraits<decltype(Method)>;
  static_assert(Traits::arity == N, "the parameter list and the method differ in length");
  if constexpr (Traits::arity == N) {
    if (!invoke_detail::paramsFit<typename Traits::Params>(params, std::make_index_sequence<N>{}))
      throw "a parameter's kind does not match the method's parameter type";
  }
  constexpr ReturnKind returns =
      std::is_same_v<typename Traits::Result, Value> ? ReturnKind::Variant : ReturnKind::Status;
  static_assert(returns == ReturnKind::Variant || std::is_same_v<typename Traits::Result, std::int16_t>);
  return MemberInfo{name, dispid, params, returns, &invoke<Method>};
}

// An object of a class bound to its member table.
template <class Cls>
class TableDispatch final : public DispatchObject {
 public:
  explicit TableDispatch(std::shared_ptr<Host> host) : object_(std::move(host)) {}

  const ClassInfo& classInfo() const override { return Cls::Members(); }
  Value invoke(const MemberInfo& member, std::span<Argument> args) override {
    // An invoker casts to its own class: an entry of another table must not reach it.
    if (!Cls::Members().owns(member)) throw std::invalid_argument("a member of another class");
    return member.invoke(object_, args);
  }

 private:
  Cls object_;
};

// The factory of a class's table.
template <class Cls>
std::unique_ptr<DispatchObject> createDispatch(std::shared_ptr<Host> host) {
  return std::make_unique<TableDispatch<Cls>>(std::move(host));
}

// The table entry of a method; a method without an entry raises std::logic_error.
const MemberInfo& memberByInvoker(const ClassInfo& cls, Invoker invoker);

template <auto Method>
const ClassInfo& classOf() {
  return invoke_detail::MethodTraits<decltype(Method)>::Class::Members();
}

template <auto Method>
const MemberInfo& memberOf() {
  static const MemberInfo& entry = memberByInvoker(classOf<Method>(), &invoke<Method>);
  return entry;
}

}  // namespace tovrand
