#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "tests/support/ExpectVbError.h"
#include "vb/VbError.h"

namespace tovrand {
namespace {

using P = PropertyType;
using Members = std::vector<std::pair<std::string_view, PropertyType>>;

Members membersOf(const EntityClass& cls) {
  Members members;
  for (const PropertyInfo& p : cls.properties) members.emplace_back(p.name, p.type);
  return members;
}

// --- Member order and types

TEST(EntityMembers, POrder) {
  const Members expected{{"F_WoNo", P::Double},      {"F_SalerID", P::String},    {"F_Status", P::Integer},
                         {"F_ProdDate", P::Date},    {"F_ProdQty", P::Double},    {"F_DeliverDate", P::Date},
                         {"F_OrdQty", P::Double},    {"F_BalQty", P::Double},     {"F_OutBkQty", P::Double},
                         {"F_OutDate", P::Date},     {"F_OutQty", P::Double},     {"F_InDate", P::Date},
                         {"F_InQty", P::Double},     {"F_COrderNo", P::String},   {"F_CustNo", P::String},
                         {"F_ItemNo", P::String},    {"F_OrderOutNo", P::Double}, {"F_OrderNo", P::Double},
                         {"F_OrderMode", P::String}, {"F_ProdNo", P::Double}};
  EXPECT_EQ(membersOf(clsEntPOrder::Class()), expected);
  EXPECT_EQ(clsEntPOrder::Class().properties.front().name, "F_WoNo");
  EXPECT_EQ(clsEntPOrder::Class().properties.back().name, "F_ProdNo");
  EXPECT_EQ(clsEntPOrder::property_count, 20u);
  EXPECT_EQ(clsEntPOrder::F_ProdNo_index, 19u);
}

TEST(EntityMembers, POrderChkFollowsTheTableOrder) {
  const Members expected{
      {"F_ProdNo", P::Double},    {"F_OrderNo", P::Double},     {"F_ItemNo", P::String},
      {"F_CustNo", P::String},    {"F_CorderNo", P::String},    {"F_OrderCount", P::Double},
      {"F_DeliverDate", P::Date}, {"F_CItemNo", P::String},     {"F_BStradCon", P::Integer},
      {"F_BSNote", P::String},    {"F_BSAlertNote", P::String}, {"F_BSChecker", P::String},
      {"F_BSCheckTime", P::Date}, {"F_EGAdmit", P::Integer},    {"F_EGModel", P::Integer},
      {"F_EGNote", P::String},    {"F_EGChecker", P::String},   {"F_EGCheckTime", P::Date},
      {"F_WIFill", P::Double},    {"F_WIEndtime", P::Date},     {"F_WPStock", P::Double},
      {"F_WPEndTime", P::Date},   {"F_WINote", P::String},      {"F_WIChecker", P::String},
      {"F_WIChecktime", P::Date}, {"F_PUprovider", P::Integer}, {"F_PUNote", P::String},
      {"F_PUChecker", P::String}, {"F_PUCheckTime", P::Date},   {"F_QCStd", P::Integer},
      {"F_QCNote", P::String},    {"F_QChecker", P::String},    {"F_QCheckTime", P::Date},
      {"F_MKDate", P::Integer},   {"F_MKNote", P::String},      {"F_MKChecker", P::String},
      {"F_MKCheckTime", P::Date}, {"F_Way", P::String},         {"F_CSNote", P::String},
      {"F_CSChecker", P::String}, {"F_CSCheckTime", P::Date},   {"F_AlerTime", P::Date},
      {"F_Status", P::Integer}};
  EXPECT_EQ(membersOf(clsEntPOrderChk::Class()), expected);
}

TEST(EntityMembers, BOrderh) {
  const Members expected{{"F_OrderNo", P::Double},  {"F_OrderDate", P::Date}, {"F_CustNo", P::String},
                         {"F_CorderNo", P::String}, {"F_SalerID", P::String}, {"F_ProdNo", P::Double},
                         {"F_ItemNo", P::String}};
  EXPECT_EQ(membersOf(clsEntBOrderh::Class()), expected);
}

TEST(EntityMembers, BOrderi) {
  const Members expected{{"F_OrderNo", P::Double}, {"F_No", P::String},       {"F_ItemNo", P::String},
                         {"F_CItemNo", P::String}, {"F_OrderQty", P::Double}, {"F_DeliverDate", P::Date},
                         {"F_BkQty", P::Double},   {"F_StockQty", P::Double}, {"F_ProdNo", P::Double}};
  EXPECT_EQ(membersOf(clsEntBOrderi::Class()), expected);
}

TEST(EntityMembers, PMrph) {
  const Members expected{{"F_ProdNo", P::Double},  {"F_ItemNo", P::String},  {"F_OrderQty", P::Double},
                         {"F_SafeQty", P::Double}, {"F_NeedQty", P::Double}, {"F_PlanPurQty", P::Double},
                         {"F_Status", P::Integer}};
  EXPECT_EQ(membersOf(clsEntPMrph::Class()), expected);
}

TEST(EntityMembers, WStockQtys) {
  const Members expected{{"F_ReduceQty", P::Double}, {"F_ProdNo", P::Double}, {"F_ItemNo", P::String}};
  EXPECT_EQ(membersOf(clsEntWStockQtys::Class()), expected);
}

TEST(EntityMembers, PMrpi) {
  const Members expected{{"F_Status", P::Integer}, {"F_LeadTime", P::Integer}, {"F_RequestQty", P::Double},
                         {"F_SafeQty", P::Double}, {"F_Waste", P::Double},     {"F_Dosage", P::Double},
                         {"F_ItemNo", P::String},  {"F_ProdNo", P::Double}};
  EXPECT_EQ(membersOf(clsEntPMrpi::Class()), expected);
}

TEST(EntityMembers, EItem) {
  const Members expected{{"F_ItemNo", P::String},
                         {"F_Type", P::String},
                         {"F_ItemName", P::String},
                         {"F_ItemDesc", P::String},
                         {"F_Unit", P::String}};
  EXPECT_EQ(membersOf(clsEntEItem::Class()), expected);
}

TEST(EntityMembers, EBom) {
  const Members expected{{"F_GoodsNo", P::String}, {"F_PartNo", P::String},     {"F_Dosage", P::Double},
                         {"F_Waste", P::Double},   {"F_RequestQty", P::String}, {"F_LeadDay", P::Integer}};
  EXPECT_EQ(membersOf(clsEntEBom::Class()), expected);
}

// --- The class registry

TEST(EntityClasses, NamesAndProgIds) {
  const std::vector<std::string_view> names{"clsEntPOrder",  "clsEntPOrderChk", "clsEntBOrderh",
                                            "clsEntBOrderi", "clsEntPMrph",     "clsEntWStockQtys",
                                            "clsEntPMrpi",   "clsEntEItem",     "clsEntEBom"};
  ASSERT_EQ(entityClasses().size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const EntityClass* cls = entityClasses()[i];
    EXPECT_EQ(cls->name, names[i]);
    EXPECT_EQ(cls->progId, "Velmora." + std::string(names[i]));
    EXPECT_EQ(findEntityClass(names[i]), cls);
    EXPECT_EQ(cls->iid.size(), 38u) << names[i];
    EXPECT_EQ(cls->iid.front(), '{');
    EXPECT_EQ(cls->iid.back(), '}');
  }
  EXPECT_EQ(findEntityClass("clsEntNothing"), nullptr);
  EXPECT_EQ(clsEntPOrder::Class().iid, "{A810F928-BD92-4915-BB21-DFECAE154B0A}");
}

TEST(EntityClasses, TypedViewsUseTheRegisteredClasses) {
  EXPECT_EQ(&clsEntPOrder::Class(), findEntityClass("clsEntPOrder"));
  EXPECT_EQ(&clsEntEBom::Class(), findEntityClass("clsEntEBom"));
  EXPECT_EQ(&clsEntWStockQtys().entityClass(), &clsEntWStockQtys::Class());
}

// --- Initial values

TEST(EntityInitialValues, ZeroEmptyTextAndZeroDate) {
  EXPECT_EQ(initialValue(P::Double), Value(0.0));
  EXPECT_EQ(initialValue(P::String), Value(""));
  EXPECT_EQ(initialValue(P::Integer), Value(std::int16_t{0}));
  EXPECT_EQ(initialValue(P::Date), Value(VbDate{}));
}

TEST(EntityInitialValues, EveryPropertyOfEveryClassStartsAtItsTypesInitialValue) {
  for (const EntityClass* cls : entityClasses()) {
    Entity e = newNativeEntity(*cls);
    for (std::size_t i = 0; i < cls->properties.size(); ++i)
      EXPECT_EQ(e.getAt(i), initialValue(cls->properties[i].type))
          << cls->name << "." << cls->properties[i].name;
  }
}

TEST(EntityInitialValues, TypedAccessorsSeeThem) {
  clsEntPOrder order;
  EXPECT_EQ(order.F_WoNo(), 0.0);
  EXPECT_EQ(order.F_SalerID(), "");
  EXPECT_EQ(order.F_Status(), 0);
  EXPECT_EQ(order.F_ProdDate(), VbDate{});
}

TEST(EntityInitialValues, AssigningOnePropertyLeavesTheOthersAtTheirInitialValues) {
  clsEntPOrderChk line;
  line.F_ProdNo(Value(2026110001.0));
  EXPECT_EQ(line.F_ProdNo(), 2026110001.0);
  EXPECT_EQ(line.get("F_ItemNo"), Value(""));
  EXPECT_EQ(line.get("F_BStradCon"), Value(std::int16_t{0}));
  EXPECT_EQ(line.get("F_DeliverDate"), Value(VbDate{}));
}

TEST(EntityInitialValues, AStoreAssignedEmptyHoldsEmptyThereAndInitialValuesElsewhere) {
  // A copy of a caller's object may carry Empty: it is held as such, the others keep their values.
  Entity e = newNativeEntity(clsEntPMrph::Class());
  e.store()->put(clsEntPMrph::F_ItemNo_index, Value());
  e.store()->put(clsEntPMrph::F_OrderQty_index, Value(3.0));
  EXPECT_TRUE(e.getAt(clsEntPMrph::F_ItemNo_index).isEmpty());
  EXPECT_EQ(e.getAt(clsEntPMrph::F_OrderQty_index), Value(3.0));
  EXPECT_EQ(e.getAt(clsEntPMrph::F_ProdNo_index), Value(0.0));
  EXPECT_EQ(e.getAt(clsEntPMrph::F_Status_index), Value(std::int16_t{0}));
  e.store()->put(clsEntPMrph::F_ItemNo_index, Value("M-1"));
  EXPECT_EQ(e.getAt(clsEntPMrph::F_ItemNo_index), Value("M-1"));
}

TEST(EntityInitialValues, EveryPropertyAssignedKeepsItsValueBeforeAndAfterTheFifth) {
  // A few assignments are held apart from the rest; the fifth gives every property its place.
  for (const EntityClass* cls : entityClasses()) {
    Entity e = newNativeEntity(*cls);
    const std::size_t count = cls->properties.size();
    for (std::size_t assigned = 1; assigned <= count; ++assigned) {
      e.putAt(count - assigned, Value(7.0));
      for (std::size_t j = 0; j < count; ++j) {
        const Value expected = j >= count - assigned ? convertTo(cls->properties[j].type, Value(7.0))
                                                     : initialValue(cls->properties[j].type);
        EXPECT_EQ(e.getAt(j), expected)
            << cls->name << "." << cls->properties[j].name << " after " << assigned << " assignments";
      }
    }
  }
}

TEST(EntityInitialValues, ReassigningOneOfTheFirstFewReplacesItsValue) {
  clsEntPMrph line;
  line.put("F_ItemNo", Value("M-1"));
  line.put("F_OrderQty", Value(3.0));
  line.put("F_ItemNo", Value("M-2"));
  EXPECT_EQ(line.get("F_ItemNo"), Value("M-2"));
  EXPECT_EQ(line.get("F_OrderQty"), Value(3.0));
  for (const char* name : {"F_ProdNo", "F_Status", "F_SafeQty", "F_NeedQty"}) line.put(name, Value("4"));
  EXPECT_EQ(line.get("F_ItemNo"), Value("M-2"));
  EXPECT_EQ(line.get("F_OrderQty"), Value(3.0));
  EXPECT_EQ(line.get("F_ProdNo"), Value(4.0));
  EXPECT_EQ(line.get("F_Status"), Value(std::int16_t{4}));
}

TEST(EntityInitialValues, EmptyAfterAFewAssignmentsKeepsThemAndStandsForItself) {
  Entity e = newNativeEntity(clsEntPMrph::Class());
  e.putAt(clsEntPMrph::F_OrderQty_index, Value(3.0));
  e.store()->put(clsEntPMrph::F_ItemNo_index, Value());
  EXPECT_TRUE(e.getAt(clsEntPMrph::F_ItemNo_index).isEmpty());
  EXPECT_EQ(e.getAt(clsEntPMrph::F_OrderQty_index), Value(3.0));
  EXPECT_EQ(e.getAt(clsEntPMrph::F_Status_index), Value(std::int16_t{0}));
}

// --- Assignment converts as VB does

TEST(EntityAssignment, ValuesAreConvertedToThePropertyType) {
  clsEntPOrder order;
  order.F_ProdNo(Value("2008050001"));
  EXPECT_EQ(order.F_ProdNo(), 2008050001.0);
  EXPECT_EQ(order.get("F_ProdNo"), Value(2008050001.0));
  order.F_ItemNo(Value(12.5));
  EXPECT_EQ(order.F_ItemNo(), "12.5");
  order.F_Status(Value(2.5));
  EXPECT_EQ(order.F_Status(), 2);
  EXPECT_EQ(order.get("F_Status").type(), Value::Type::Integer);
  order.F_ProdDate(Value("2008-5-15 10:30:00"));
  EXPECT_EQ(order.F_ProdDate(), VbDate{39583.4375});
  order.F_DeliverDate(Value(39583.0));
  EXPECT_EQ(order.get("F_DeliverDate"), Value(VbDate{39583.0}));
  order.F_CustNo(Value(VbDate{39583.0}));
  EXPECT_EQ(order.F_CustNo(), "2008-5-15");
}

TEST(EntityAssignment, EmptyTextIntoADoubleIsTypeMismatch) {
  clsEntPOrder order;
  EXPECT_VB_ERROR(order.F_ProdNo(Value("")), 13, "Type mismatch");
  EXPECT_VB_ERROR(order.put("F_ProdNo", Value("")), 13, "Type mismatch");
  EXPECT_EQ(order.F_ProdNo(), 0.0);  // the failed assignment left the property as it was
}

TEST(EntityAssignment, EmptyTextIntoADateIsTypeMismatch) {
  clsEntPOrder order;
  EXPECT_VB_ERROR(order.F_ProdDate(Value("")), 13, "Type mismatch");
  EXPECT_VB_ERROR(order.F_Status(Value("abc")), 13, "Type mismatch");
}

TEST(EntityAssignment, NullIsInvalidUseOfNull) {
  clsEntPOrder order;
  EXPECT_VB_ERROR(order.F_ProdNo(Value::null()), 94, "Invalid use of Null");
  EXPECT_VB_ERROR(order.F_ItemNo(Value::null()), 94, "Invalid use of Null");
  EXPECT_VB_ERROR(order.F_Status(Value::null()), 94, "Invalid use of Null");
  EXPECT_VB_ERROR(order.F_ProdDate(Value::null()), 94, "Invalid use of Null");
}

TEST(EntityAssignment, TooLargeForAnIntegerIsOverflow) {
  clsEntPOrder order;
  EXPECT_VB_ERROR(order.F_Status(Value(std::int32_t{40000})), 6, "Overflow");
  EXPECT_VB_ERROR(order.put("F_Status", Value(32767.5)), 6, "Overflow");
  order.F_Status(Value(32767.0));
  EXPECT_EQ(order.F_Status(), 32767);
}

TEST(EntityAssignment, ConvertToDirectly) {
  EXPECT_EQ(convertTo(P::Double, Value("1e3")), Value(1000.0));
  EXPECT_EQ(convertTo(P::String, Value(std::int16_t{7})), Value("7"));
  EXPECT_EQ(convertTo(P::Integer, Value(true)), Value(std::int16_t{-1}));
  EXPECT_EQ(convertTo(P::Date, Value()), Value(VbDate{}));
  EXPECT_VB_ERROR(convertTo(P::Integer, Value(-32769.0)), 6, "Overflow");
}

TEST(EntityAssignment, PutAtConvertsToo) {
  Entity e = newNativeEntity(clsEntWStockQtys::Class());
  e.putAt(0, Value("5"));
  EXPECT_EQ(e.getAt(0), Value(5.0));
  EXPECT_VB_ERROR(e.putAt(0, Value("")), 13, "Type mismatch");
}

TEST(EntityAssignment, TheCallersValueIsLeftAsItWas) {
  // A value already of the property's type is taken over as it is; the caller's own copy stays.
  const std::string remark(100, 'x');
  Value text(remark);
  Value quantity(12.5);
  clsEntPOrder order;
  order.F_CustNo(text);
  order.F_OrdQty(quantity);
  order.put("F_ItemNo", text);
  EXPECT_EQ(text, Value(remark));
  EXPECT_EQ(quantity, Value(12.5));
  EXPECT_EQ(order.F_CustNo(), remark);
  EXPECT_EQ(order.get("F_ItemNo"), Value(remark));
  EXPECT_EQ(order.F_OrdQty(), 12.5);
}

// --- Late-bound names

TEST(EntityNames, LookupIgnoresCase) {
  clsEntPMrpi line;
  line.put("f_itemno", Value("A-1"));
  EXPECT_EQ(line.get("F_ITEMNO"), Value("A-1"));
  EXPECT_EQ(line.F_ItemNo(), "A-1");
  EXPECT_EQ(clsEntPMrpi::Class().find("f_leadtime"), std::optional<std::size_t>{1});
  EXPECT_EQ(clsEntPOrder::Class().find("F_ProdNO"), std::optional<std::size_t>{19});
}

TEST(EntityNames, UnknownPropertyIsObjectDoesntSupport) {
  clsEntPMrpi line;
  EXPECT_VB_ERROR(line.get("F_Nothing"), 438, "Object doesn't support this property or method");
  EXPECT_VB_ERROR(line.put("F_Nothing", Value(1.0)), 438, "Object doesn't support this property or method");
  EXPECT_FALSE(clsEntPMrpi::Class().find("F_Nothing").has_value());
}

// --- Typed views and references

TEST(EntityViews, ViewOfAnotherClassIsTypeMismatch) {
  clsEntPMrph header;
  EXPECT_VB_ERROR(clsEntPOrder(static_cast<Entity>(header)), 13, "Type mismatch");
  EXPECT_VB_ERROR(clsEntPMrpi(newNativeEntity(clsEntEItem::Class())), 13, "Type mismatch");
}

TEST(EntityViews, ViewOfNothingIsObjectNotSet) {
  EXPECT_VB_ERROR(clsEntPOrder(Entity()), 91, "Object variable or With block variable not set");
}

TEST(EntityViews, NothingRaisesObjectNotSetOnUse) {
  Entity nothing;
  EXPECT_TRUE(nothing.isNothing());
  EXPECT_VB_ERROR(nothing.get("F_ProdNo"), 91, "Object variable or With block variable not set");
  EXPECT_VB_ERROR(nothing.put("F_ProdNo", Value(1.0)), 91, "Object variable or With block variable not set");
  EXPECT_VB_ERROR(nothing.entityClass(), 91, "Object variable or With block variable not set");
}

TEST(EntityViews, ViewOfTheSameClassSharesTheObject) {
  Entity plain = newNativeEntity(clsEntPOrder::Class());
  clsEntPOrder view(plain);
  view.F_ProdNo(Value(7.0));
  EXPECT_EQ(plain.get("F_ProdNo"), Value(7.0));
  EXPECT_EQ(view.store(), plain.store());
}

TEST(EntityReferences, CopiesReferToTheSameObject) {
  clsEntPOrder original;
  clsEntPOrder copy = original;
  copy.F_ItemNo(Value("X"));
  EXPECT_EQ(original.F_ItemNo(), "X");
  Entity asEntity = original;
  asEntity.put("F_Status", Value(std::int16_t{3}));
  EXPECT_EQ(copy.F_Status(), 3);
}

TEST(EntityReferences, NewEntitiesAreDistinct) {
  clsEntPOrder a;
  clsEntPOrder b;
  a.F_ProdNo(Value(1.0));
  EXPECT_EQ(b.F_ProdNo(), 0.0);
  EXPECT_NE(a.store(), b.store());
}

// --- Collection

TEST(EntityCollection, AddCountAndOneBasedItem) {
  Collection coll;
  EXPECT_EQ(coll.Count(), 0);
  clsEntPMrph first;
  first.F_ItemNo(Value("A"));
  clsEntPMrph second;
  second.F_ItemNo(Value("B"));
  coll.Add(first);
  coll.Add(second);
  EXPECT_EQ(coll.Count(), 2);
  EXPECT_EQ(clsEntPMrph(coll.Item(1)).F_ItemNo(), "A");
  EXPECT_EQ(clsEntPMrph(coll.Item(2)).F_ItemNo(), "B");
}

TEST(EntityCollection, ItemOutsideOneToCountIsSubscriptOutOfRange) {
  Collection coll;
  EXPECT_VB_ERROR(coll.Item(1), 9, "Subscript out of range");
  coll.Add(clsEntEItem());
  EXPECT_VB_ERROR(coll.Item(0), 9, "Subscript out of range");
  EXPECT_VB_ERROR(coll.Item(2), 9, "Subscript out of range");
  EXPECT_VB_ERROR(coll.Item(-1), 9, "Subscript out of range");
  EXPECT_NO_THROW(coll.Item(1));
}

TEST(EntityCollection, HoldsReferencesNotCopies) {
  Collection coll;
  clsEntPMrpi line;
  coll.Add(line);
  line.F_Dosage(Value(2.5));
  EXPECT_EQ(coll.Item(1).get("F_Dosage"), Value(2.5));
  coll.Item(1).put("F_Waste", Value("0.1"));
  EXPECT_EQ(line.F_Waste(), 0.1);
}

}  // namespace
}  // namespace tovrand
