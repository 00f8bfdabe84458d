#include <gtest/gtest.h>

#include "cli/Json.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "vb/Text.h"

namespace tovrand::cli {
namespace {

// A value for every property that differs from the property's initial value and from its
// neighbours', so that a property copied into the wrong slot shows.
Json sampleValue(const PropertyInfo& property, std::size_t index) {
  switch (property.type) {
    case PropertyType::Double:
      return index % 2 ? Json(2008050001 + static_cast<std::int64_t>(index)) : Json(1234.5 + index);
    case PropertyType::String:
      return "生产订单 " + std::string(property.name) + " ü";
    case PropertyType::Integer:
      return static_cast<int>(index) - 3;
    case PropertyType::Date: {
      char text[32];
      std::snprintf(text, sizeof text, "2026-%02zu-%02zu %02zu:%02zu:%02zu", index % 12 + 1, index % 28 + 1,
                    index % 24, (index * 7) % 60, (index * 13) % 60);
      return text;
    }
  }
  return nullptr;
}

Json everyProperty(const EntityClass& cls) {
  Json j = Json::object();
  for (std::size_t i = 0; i < cls.properties.size(); ++i)
    j[std::string(cls.properties[i].name)] = sampleValue(cls.properties[i], i);
  return j;
}

TEST(EntityJson, EveryPropertyOfEveryEntityClassRoundTripsInMemberOrder) {
  ASSERT_FALSE(entityClasses().empty());
  for (const EntityClass* cls : entityClasses()) {
    SCOPED_TRACE(std::string(cls->name));
    const Json input = everyProperty(*cls);
    const Entity entity = entityFromJson(input, *cls, "Entity");
    EXPECT_EQ(&entity.entityClass(), cls);
    EXPECT_EQ(entityToJson(entity).dump(), input.dump());
  }
}

TEST(EntityJson, EntityToJsonListsEveryPropertyEvenWhenUnset) {
  const Entity entity = entityFromJson(Json::object(), clsEntPMrph::Class(), "Entity");
  EXPECT_EQ(
      entityToJson(entity).dump(),
      R"js({"F_ProdNo":0,"F_ItemNo":"","F_OrderQty":0,"F_SafeQty":0,"F_NeedQty":0,"F_PlanPurQty":0,"F_Status":0})js");
}

TEST(EntityJson, ZeroDateAndDateOnlyTextsReadAsDates) {
  const Entity entity = entityFromJson(Json{{"F_InDate", "1899-12-30 00:00:00"},
                                            {"F_OutDate", "2026-11-22"},
                                            {"F_ProdDate", "2024-02-29T23:59:58"}},
                                       clsEntPOrder::Class(), "Entity");
  const Json out = entityToJson(entity);
  EXPECT_EQ(out["F_InDate"], "1899-12-30 00:00:00");
  EXPECT_EQ(out["F_OutDate"], "2026-11-22 00:00:00");
  EXPECT_EQ(out["F_ProdDate"], "2024-02-29 23:59:58");
  EXPECT_EQ(out["F_DeliverDate"], "1899-12-30 00:00:00");  // never given: the zero date
  EXPECT_EQ(clsEntPOrder(entity).F_OutDate(), makeDate({2026, 11, 22}));
}

TEST(EntityJson, ProductionNumberKeepsEveryDigit) {
  const Entity entity = entityFromJson(Json::parse(R"js({"F_ProdNo":2008050001,"F_OrdQty":0.1})js"),
                                       clsEntPOrder::Class(), "Entity");
  EXPECT_EQ(clsEntPOrder(entity).F_ProdNo(), 2008050001.0);
  const std::string text = entityToJson(entity).dump();
  EXPECT_NE(text.find("\"F_ProdNo\":2008050001}"), std::string::npos) << text;
  EXPECT_NE(text.find("\"F_OrdQty\":0.1,"), std::string::npos) << text;
}

TEST(EntityJson, PropertyNamesMatchWithoutRegardToCase) {
  const Entity entity =
      entityFromJson(Json{{"f_prodno", 7}, {"F_CUSTNO", "C001"}}, clsEntPOrder::Class(), "Entity");
  EXPECT_EQ(clsEntPOrder(entity).F_ProdNo(), 7.0);
  EXPECT_EQ(clsEntPOrder(entity).F_CustNo(), "C001");
}

TEST(EntityJson, WrongKindsAndUnknownNamesAreRefused) {
  const EntityClass& cls = clsEntPOrder::Class();
  EXPECT_THROW(entityFromJson(Json{{"F_Nothing", 1}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_ProdNo", "2008050001"}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_CustNo", 5}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_Status", 1.5}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_Status", 40000}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_InDate", 45000}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_InDate", "2026-02-30"}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_InDate", "22/11/2026"}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"F_ProdNo", 1}, {"f_prodno", 2}}, cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson("2008050001", cls, "Entity"), ProtocolError);
  EXPECT_THROW(entityFromJson(Json{{"$class", "clsEntPMrph"}}, cls, "Entity"), ProtocolError);
  try {
    entityFromJson(Json{{"F_InDate", 45000}}, cls, "Entity");
  } catch (const ProtocolError& e) {
    EXPECT_NE(std::string(e.what()).find("Entity.F_InDate"), std::string::npos) << e.what();
  }
}

TEST(EntityJson, AWrongKindIsQuotedShortWithoutCuttingACharacter) {
  // The quoted value is cut to its first characters; cut inside one, the error line was no longer
  // UTF-8 (fuzz/regressions/run_request/wrong-kind-cut-in-character).
  std::string text = "x";
  for (int i = 0; i < 40; ++i) text += "ä";
  try {
    entityFromJson(Json(text), clsEntPOrder::Class(), "Entity");
    FAIL() << "a text is no entity";
  } catch (const ProtocolError& e) {
    const std::string message = e.what();
    EXPECT_EQ(toUtf8(toUtf16(message)), message);
    EXPECT_NE(message.find("\"xää"), std::string::npos) << message;
    EXPECT_EQ(message.substr(message.size() - 3), "...");
    EXPECT_NO_THROW((void)Json(message).dump());
  }
}

TEST(EntityJson, AWrongKindNestedAnyDeepIsQuotedByItsStart) {
  // Quoted by dumping it whole, a value nested 200,000 deep took the stack down
  // (fuzz/regressions/run_request/wrong-kind-nested-deep).
  constexpr std::size_t kDepth = 200000;
  const Json deep = Json::parse(std::string(kDepth, '[') + std::string(kDepth, ']'));
  try {
    entityFromJson(deep, clsEntPOrder::Class(), "Entity");
    FAIL() << "an array is no entity";
  } catch (const ProtocolError& e) {
    EXPECT_EQ(std::string(e.what()),
              "Entity: expected an object (clsEntPOrder), got " + std::string(57, '[') + "...");
  }
}

TEST(EntityJson, AWrongKindIsQuotedAsItsJsonText) {
  try {
    entityFromJson(Json::parse(R"js([1,{"a":[true,null,"x"]},2.5])js"), clsEntPOrder::Class(), "Entity");
    FAIL() << "an array is no entity";
  } catch (const ProtocolError& e) {
    EXPECT_EQ(std::string(e.what()),
              R"js(Entity: expected an object (clsEntPOrder), got [1,{"a":[true,null,"x"]},2.5])js");
  }
}

TEST(CollectionJson, ElementsOfAnotherClassCarryTheirClass) {
  const Json input = Json::parse(
      R"js([{"F_ProdNo":2026110001,"F_ItemNo":"FG-1001"},{"$class":"clsEntPMrpi","F_ItemNo":"RM-2001","F_Dosage":2.5}])js");
  const auto collection = collectionFromJson(input, clsEntPMrph::Class(), "objColl");
  ASSERT_EQ(collection->Count(), 2);
  EXPECT_EQ(&collection->Item(1).entityClass(), &clsEntPMrph::Class());
  EXPECT_EQ(&collection->Item(2).entityClass(), &clsEntPMrpi::Class());
  const Json out = collectionToJson(*collection, clsEntPMrph::Class());
  EXPECT_FALSE(out[0].contains("$class"));
  EXPECT_EQ(out[0]["F_ProdNo"], 2026110001);
  EXPECT_EQ(out[1]["$class"], "clsEntPMrpi");
  EXPECT_EQ(out[1]["F_Dosage"], 2.5);
  EXPECT_EQ(out[1]["F_ItemNo"], "RM-2001");
}

TEST(ArgumentJson, OmittedArgumentsStartEmptyOfTheirKind) {
  const ParamInfo entity{"Entity", ParamKind::Entity, "clsEntPOrder"};
  const ParamInfo collection{"objColl", ParamKind::Collection, "clsEntPMrpi"};
  const ParamInfo text{"strSql", ParamKind::String};
  const ParamInfo number{"ProNo", ParamKind::Double};
  const ParamInfo integer{"intCnt", ParamKind::Integer};
  const ParamInfo date{"datStart", ParamKind::Date};
  const ParamInfo array{"dblProdNo", ParamKind::DoubleArray};
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, entity), entity),
            entityToJson(newNativeEntity(clsEntPOrder::Class())));
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, collection), collection), Json::array());
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, text), text), "");
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, number), number), 0);
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, integer), integer), 0);
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, date), date), "1899-12-30 00:00:00");
  EXPECT_EQ(argumentToJson(argumentFromJson(nullptr, array), array), Json::array());

  const Json numbers = Json::parse("[0,2026110001,1.25]");
  EXPECT_EQ(argumentToJson(argumentFromJson(&numbers, array), array).dump(), "[0,2026110001,1.25]");
  const Json notNumbers = Json::parse(R"js([0,"1"])js");
  EXPECT_THROW(argumentFromJson(&notNumbers, array), ProtocolError);
  const Json oneDate = "2026-11-22 08:30:00";
  EXPECT_EQ(std::get<Value>(argumentFromJson(&oneDate, date)).date(), makeDate({2026, 11, 22, 8, 30, 0}));
}

TEST(ValueJson, VariantsBecomeJsonOfTheirKind) {
  EXPECT_EQ(valueToJson(Value()), nullptr);
  EXPECT_EQ(valueToJson(Value::null()), nullptr);
  EXPECT_EQ(valueToJson(Value(std::int16_t{-2})), -2);
  EXPECT_EQ(valueToJson(Value(std::int32_t{70000})), 70000);
  EXPECT_EQ(valueToJson(Value(2008050001.0)).dump(), "2008050001");
  EXPECT_EQ(valueToJson(Value(-0.0)).dump(), "0");
  EXPECT_EQ(valueToJson(Value(0.5)).dump(), "0.5");
  EXPECT_EQ(valueToJson(Value("文本")), "文本");
  EXPECT_EQ(valueToJson(Value(VbDate{})), "1899-12-30 00:00:00");
  EXPECT_EQ(valueToJson(Value(true)), true);
}

}  // namespace
}  // namespace tovrand::cli
