#pragma once

// The Velmora entity classes the component reads and fills, one per table row, each with one
// read-write property per column, named exactly after the column, in the member order of the
// installed Velmora where it is known.

#include <cstdint>
#include <span>
#include <string>

#include "entities/Entity.h"

namespace tovrand {

// Property lists: P(name, PropertyType) in member order.
// clang-format off
#define TOVRAND_CLSENTPORDER(P) \
  P(F_WoNo, Double)             \
  P(F_SalerID, String)          \
  P(F_Status, Integer)          \
  P(F_ProdDate, Date)           \
  P(F_ProdQty, Double)          \
  P(F_DeliverDate, Date)        \
  P(F_OrdQty, Double)           \
  P(F_BalQty, Double)           \
  P(F_OutBkQty, Double)         \
  P(F_OutDate, Date)            \
  P(F_OutQty, Double)           \
  P(F_InDate, Date)             \
  P(F_InQty, Double)            \
  P(F_COrderNo, String)         \
  P(F_CustNo, String)           \
  P(F_ItemNo, String)           \
  P(F_OrderOutNo, Double)       \
  P(F_OrderNo, Double)          \
  P(F_OrderMode, String)        \
  P(F_ProdNo, Double)

#define TOVRAND_CLSENTPORDERCHK(P) \
  P(F_ProdNo, Double)              \
  P(F_OrderNo, Double)             \
  P(F_ItemNo, String)              \
  P(F_CustNo, String)              \
  P(F_CorderNo, String)            \
  P(F_OrderCount, Double)          \
  P(F_DeliverDate, Date)           \
  P(F_CItemNo, String)             \
  P(F_BStradCon, Integer)          \
  P(F_BSNote, String)              \
  P(F_BSAlertNote, String)         \
  P(F_BSChecker, String)           \
  P(F_BSCheckTime, Date)           \
  P(F_EGAdmit, Integer)            \
  P(F_EGModel, Integer)            \
  P(F_EGNote, String)              \
  P(F_EGChecker, String)           \
  P(F_EGCheckTime, Date)           \
  P(F_WIFill, Double)              \
  P(F_WIEndtime, Date)             \
  P(F_WPStock, Double)             \
  P(F_WPEndTime, Date)             \
  P(F_WINote, String)              \
  P(F_WIChecker, String)           \
  P(F_WIChecktime, Date)           \
  P(F_PUprovider, Integer)         \
  P(F_PUNote, String)              \
  P(F_PUChecker, String)           \
  P(F_PUCheckTime, Date)           \
  P(F_QCStd, Integer)              \
  P(F_QCNote, String)              \
  P(F_QChecker, String)            \
  P(F_QCheckTime, Date)            \
  P(F_MKDate, Integer)             \
  P(F_MKNote, String)              \
  P(F_MKChecker, String)           \
  P(F_MKCheckTime, Date)           \
  P(F_Way, String)                 \
  P(F_CSNote, String)              \
  P(F_CSChecker, String)           \
  P(F_CSCheckTime, Date)           \
  P(F_AlerTime, Date)              \
  P(F_Status, Integer)

#define TOVRAND_CLSENTBORDERH(P) \
  P(F_OrderNo, Double)           \
  P(F_OrderDate, Date)           \
  P(F_CustNo, String)            \
  P(F_CorderNo, String)          \
  P(F_SalerID, String)           \
  P(F_ProdNo, Double)            \
  P(F_ItemNo, String)

// F_No is the line number, F_OrderQty the ordered quantity, F_StockQty the material's stock that
// clsDataPOrderChk.QueryBOrderiBkQty sums from the warehouse lines.
#define TOVRAND_CLSENTBORDERI(P) \
  P(F_OrderNo, Double)           \
  P(F_No, String)                \
  P(F_ItemNo, String)            \
  P(F_CItemNo, String)           \
  P(F_OrderQty, Double)          \
  P(F_DeliverDate, Date)         \
  P(F_BkQty, Double)             \
  P(F_StockQty, Double)          \
  P(F_ProdNo, Double)

#define TOVRAND_CLSENTPMRPH(P) \
  P(F_ProdNo, Double)          \
  P(F_ItemNo, String)          \
  P(F_OrderQty, Double)        \
  P(F_SafeQty, Double)         \
  P(F_NeedQty, Double)         \
  P(F_PlanPurQty, Double)      \
  P(F_Status, Integer)

#define TOVRAND_CLSENTWSTOCKQTYS(P) \
  P(F_ReduceQty, Double)            \
  P(F_ProdNo, Double)               \
  P(F_ItemNo, String)

#define TOVRAND_CLSENTPMRPI(P) \
  P(F_Status, Integer)         \
  P(F_LeadTime, Integer)       \
  P(F_RequestQty, Double)      \
  P(F_SafeQty, Double)         \
  P(F_Waste, Double)           \
  P(F_Dosage, Double)          \
  P(F_ItemNo, String)          \
  P(F_ProdNo, Double)

#define TOVRAND_CLSENTEITEM(P) \
  P(F_ItemNo, String)          \
  P(F_Type, String)            \
  P(F_ItemName, String)        \
  P(F_ItemDesc, String)        \
  P(F_Unit, String)

#define TOVRAND_CLSENTEBOM(P) \
  P(F_GoodsNo, String)        \
  P(F_PartNo, String)         \
  P(F_Dosage, Double)         \
  P(F_Waste, Double)          \
  P(F_RequestQty, String)     \
  P(F_LeadDay, Integer)

// clang-format on

namespace entity_detail {
template <PropertyType T>
struct Cpp;
template <>
struct Cpp<PropertyType::Double> {
  using type = double;
  static double from(const Value& v) { return CDbl(v); }
};
template <>
struct Cpp<PropertyType::String> {
  using type = std::string;
  static std::string from(const Value& v) { return CStr(v); }
};
template <>
struct Cpp<PropertyType::Integer> {
  using type = std::int16_t;
  static std::int16_t from(const Value& v) { return CInt(v); }
};
template <>
struct Cpp<PropertyType::Date> {
  using type = VbDate;
  static VbDate from(const Value& v) { return CDate(v); }
};
}  // namespace entity_detail

#define TOVRAND_ENTITY_INDEX(name, type) name##_index,
#define TOVRAND_ENTITY_ACCESSORS(name, kind)                                               \
  entity_detail::Cpp<PropertyType::kind>::type name() const {                              \
    return entity_detail::Cpp<PropertyType::kind>::from(checkedStore().get(name##_index)); \
  }                                                                                        \
  void name(Value v) {                                                                     \
    checkedStore().put(name##_index, convertTo(PropertyType::kind, std::move(v)));         \
  }

// A typed view of an entity reference: get with name(), assign with name(value) (the value is
// converted to the property's type as VB does on assignment).
#define TOVRAND_ENTITY_CLASS(cls, LIST)                                                    \
  class cls : public Entity {                                                              \
   public:                                                                                 \
    enum PropertyIndex : std::size_t { LIST(TOVRAND_ENTITY_INDEX) property_count };        \
    static const EntityClass& Class();                                                     \
    /* A new entity of this class, held in this process. */                                \
    cls();                                                                                 \
    /* The entity `e` seen as this class: 13 Type mismatch when it is of another class. */ \
    explicit cls(Entity e);                                                                \
    LIST(TOVRAND_ENTITY_ACCESSORS)                                                         \
  };

TOVRAND_ENTITY_CLASS(clsEntPOrder, TOVRAND_CLSENTPORDER)
TOVRAND_ENTITY_CLASS(clsEntPOrderChk, TOVRAND_CLSENTPORDERCHK)
TOVRAND_ENTITY_CLASS(clsEntBOrderh, TOVRAND_CLSENTBORDERH)
TOVRAND_ENTITY_CLASS(clsEntBOrderi, TOVRAND_CLSENTBORDERI)
TOVRAND_ENTITY_CLASS(clsEntPMrph, TOVRAND_CLSENTPMRPH)
TOVRAND_ENTITY_CLASS(clsEntWStockQtys, TOVRAND_CLSENTWSTOCKQTYS)
TOVRAND_ENTITY_CLASS(clsEntPMrpi, TOVRAND_CLSENTPMRPI)
TOVRAND_ENTITY_CLASS(clsEntEItem, TOVRAND_CLSENTEITEM)
TOVRAND_ENTITY_CLASS(clsEntEBom, TOVRAND_CLSENTEBOM)

#undef TOVRAND_ENTITY_CLASS
#undef TOVRAND_ENTITY_ACCESSORS
#undef TOVRAND_ENTITY_INDEX

// Every entity class, for reflection by name (the command line, the COM shell).
std::span<const EntityClass* const> entityClasses();
const EntityClass* findEntityClass(std::string_view name);

}  // namespace tovrand
