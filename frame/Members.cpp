#include "frame/Members.h"

#include <array>

#include "vb/Text.h"

namespace tovrand {

namespace {

using K = ParamKind;

// clsDataPOrder
constexpr ParamInfo kPOrderQueryByStrSql[] = {{"colPOrder", K::Collection, "clsEntPOrder"},
                                              {"strSql", K::String}};
constexpr ParamInfo kPOrderGetALLChkList[] = {{"collAllchklist", K::Collection, "clsEntPOrder"}};
constexpr ParamInfo kPOrderEntity[] = {{"Entity", K::Entity, "clsEntPOrder"}};
constexpr ParamInfo kPOrderCheckCustProdNo[] = {
    {"Entity", K::Entity, "clsEntPOrder"}, {"CustNo", K::String}, {"ProNo", K::Double}};
constexpr ParamInfo kPOrderQueryAllProdNo[] = {{"dblProdNo", K::DoubleArray}};

constexpr MemberInfo kPOrderMembers[] = {
    {"QueryByStrSql", 0x60030002, kPOrderQueryByStrSql},
    {"GetALLChkList", 0x60030003, kPOrderGetALLChkList},
    {"QueryItem", 0x60030004, kPOrderEntity},
    {"CheckCustProdNo", 0x60030005, kPOrderCheckCustProdNo},
    {"AddRecord", 0x60030006, kPOrderEntity},
    {"UpdateRecord", 0x60030007, kPOrderEntity},
    {"UpdateOrderOutNo", 0x60030008, kPOrderEntity},
    {"QueryAllProdNo", 0x60030009, kPOrderQueryAllProdNo},
};

// clsDataPOrderChk
constexpr ParamInfo kChkBOrderi[] = {{"Entity", K::Entity, "clsEntBOrderi"}};
constexpr ParamInfo kChkJudgeExits[] = {{"GoodsNo", K::String}};
constexpr ParamInfo kChkUpdateRecord[] = {{"Entity", K::Entity, "clsEntPOrderChk"}, {"stypeName", K::String}};
constexpr ParamInfo kChkQueryAll[] = {{"Entity", K::Entity, "clsEntPOrderChk"}, {"ProdNo", K::Double}};
constexpr ParamInfo kChkEntity[] = {{"Entity", K::Entity, "clsEntPOrderChk"}};
constexpr ParamInfo kChkColl[] = {{"objColl", K::Collection, "clsEntPOrderChk"}};
constexpr ParamInfo kChkAddRecord[] = {{"objColl", K::Collection, "clsEntBOrderi"},
                                       {"OrderNo", K::String},
                                       {"CustNo", K::String},
                                       {"CorderNo", K::String},
                                       {"LenInt", K::Integer}};
constexpr ParamInfo kChkQureyDatabase[] = {{"SQLStr", K::String},
                                           {"objColl", K::Collection, "clsEntBOrderh"}};
constexpr ParamInfo kChkQuerySalerID[] = {{"Entity", K::Entity, "clsEntBOrderh"}};

constexpr MemberInfo kPOrderChkMembers[] = {
    {"QueryBOrderiBkQty", 0x60030002, kChkBOrderi},
    {"JudgeExits", 0x60030003, kChkJudgeExits},
    {"UpdateRecord", 0x60030004, kChkUpdateRecord},
    {"QueryAll", 0x60030005, kChkQueryAll},
    {"QueryProdNoView", 0x60030006, kChkEntity},
    {"QueryMonthDate", 0x60030007, kChkColl},
    {"QueryProdNo", 0x60030008, kChkColl},
    {"AddRecord", 0x60030009, kChkAddRecord},
    {"QureyDatabase", 0x6003000A, kChkQureyDatabase},
    {"QuerySalerID", 0x6003000B, kChkQuerySalerID},
};

// clsDataPMrph
constexpr ParamInfo kMrphQueryBOrderhRecordset[] = {{"Entity", K::Entity, "clsEntBOrderh"},
                                                    {"ProdNo", K::Double}};
constexpr ParamInfo kMrphQueryPMrphRecordset[] = {{"objColl", K::Collection, "clsEntPMrph"},
                                                  {"SQLStr", K::String}};
constexpr ParamInfo kMrphEntity[] = {{"Entity", K::Entity, "clsEntPMrph"}};
constexpr ParamInfo kMrphObjEntity[] = {{"objEntPMrph", K::Entity, "clsEntPMrph"}};
constexpr ParamInfo kMrphQueryByIDForPur[] = {{"colPMrph", K::Collection, "clsEntPMrph"},
                                              {"dblStart", K::Double},
                                              {"dblEnd", K::Double},
                                              {"intCnt", K::Integer},
                                              {"strItemNo", K::String}};
constexpr ParamInfo kMrphQueryByDeliverDate[] = {{"colPMrph", K::Collection, "clsEntPMrph"},
                                                 {"datStart", K::Date},
                                                 {"datEnd", K::Date},
                                                 {"intCnt", K::Integer}};
constexpr ParamInfo kMrphColl[] = {{"objColl", K::Collection, "clsEntPMrph"}};
constexpr ParamInfo kMrphQueryStatus[] = {{"Entity", K::Entity, "clsEntPOrder"}};
constexpr ParamInfo kMrphAddRecord1[] = {{"Entity", K::Entity, "clsEntPMrph"},
                                         {"objCollD", K::Collection, "clsEntPMrpi"}};
constexpr ParamInfo kMrphAccountData[] = {{"Entity", K::Entity, "clsEntPMrph"},
                                          {"C1", K::Double},
                                          {"A", K::Double},
                                          {"P", K::Double},
                                          {"M", K::Double},
                                          {"K", K::Double},
                                          {"S", K::Double},
                                          {"SQ", K::Double},
                                          {"AT", K::Double},
                                          {"BN", K::Double},
                                          {"ATi", K::Double}};

constexpr MemberInfo kPMrphMembers[] = {
    {"QueryBOrderhRecordset", 0x60030002, kMrphQueryBOrderhRecordset},
    {"QueryPMrphRecordset", 0x60030003, kMrphQueryPMrphRecordset},
    {"QueryPMrphStatus", 0x60030004, kMrphEntity},
    {"QueryByItemNo", 0x60030005, kMrphObjEntity},
    {"UpdateRecord", 0x60030006, kMrphEntity},
    {"QueryByIDForPur", 0x60030007, kMrphQueryByIDForPur},
    {"QueryByDeliverDate", 0x60030008, kMrphQueryByDeliverDate},
    {"QueryMonthDate", 0x60030009, kMrphColl},
    {"QueryProdNo", 0x6003000A, kMrphColl},
    {"QueryStatus", 0x6003000B, kMrphQueryStatus},
    {"QueryProdNoRecord", 0x6003000C, kMrphEntity},
    {"AddRecord1", 0x6003000D, kMrphAddRecord1},
    {"AddRecord", 0x6003000E, kMrphEntity},
    // 0x6003000F belongs to a private routine and is not exposed
    {"AccountData", 0x60030010, kMrphAccountData},
};

// clsDataPMrpi
constexpr ParamInfo kMrpiQueryPMrpiStatus[] = {{"objColl", K::Collection, "clsEntPMrpi"},
                                               {"ProdNo", K::Double}};
constexpr ParamInfo kMrpiEntity[] = {{"Entity", K::Entity, "clsEntPMrpi"}};
constexpr ParamInfo kMrpiMrphEntity[] = {{"Entity", K::Entity, "clsEntPMrph"}};
constexpr ParamInfo kMrpiQueryByID[] = {{"objEntPMrpi", K::Entity, "clsEntPMrpi"}};
constexpr ParamInfo kMrpiQueryByIDForPur[] = {{"colPMrpi", K::Collection, "clsEntPMrpi"},
                                              {"dblStart", K::Double},
                                              {"dblEnd", K::Double},
                                              {"intCnt", K::Integer},
                                              {"strItemNo", K::String}};
constexpr ParamInfo kMrpiQueryByDeliverDate[] = {{"colPMrpi", K::Collection, "clsEntPMrpi"},
                                                 {"datStart", K::Date},
                                                 {"datEnd", K::Date},
                                                 {"intCnt", K::Integer}};
constexpr ParamInfo kMrpiGetRecordByCondition[] = {{"entity1", K::Entity, "clsEntEItem"},
                                                   {"entity2", K::Entity, "clsEntPMrph"}};
constexpr ParamInfo kMrpiGetItemNoByProdNo[] = {{"objCollPMrpi", K::Collection, "clsEntPMrpi"},
                                                {"Entity", K::Entity, "clsEntPMrph"}};
constexpr ParamInfo kMrpiQueryItemNo[] = {{"objColl", K::Collection, "clsEntEBom"},
                                          {"GoodsNo", K::String, "", false},
                                          {"StrStatus", K::String, "", false}};
constexpr ParamInfo kMrpiQueryEItemNo[] = {{"Entity", K::Entity, "clsEntEItem"}};
constexpr ParamInfo kMrpiQueryItemNoRecord[] = {{"objColl", K::Collection, "clsEntPMrpi"},
                                                {"ItemNo", K::String}};
constexpr ParamInfo kMrpiDeleteAll[] = {{"ProdNo", K::Double, "", false}};
constexpr ParamInfo kMrpiGetProdNoItemNo[] = {{"objColl", K::Collection, "clsEntPMrph"},
                                              {"ProdNo", K::String}};
constexpr ParamInfo kMrpiGetProdNoItemNoByPMrpi[] = {{"objColl", K::Collection, "clsEntPMrpi"},
                                                     {"ProdNo", K::String}};
constexpr ParamInfo kMrpiQueryAllNullRecord[] = {{"objColl", K::Collection, "clsEntPMrph"}};

constexpr MemberInfo kPMrpiMembers[] = {
    {"QueryPMrpiStatus", 0x60030002, kMrpiQueryPMrpiStatus},
    {"UpdatePMrpiStatus", 0x60030003, kMrpiEntity},
    {"UpdatePMrphStatus", 0x60030004, kMrpiMrphEntity},
    {"UpdateRecord", 0x60030005, kMrpiEntity},
    {"QueryByID", 0x60030006, kMrpiQueryByID},
    {"QueryByIDForPur", 0x60030007, kMrpiQueryByIDForPur},
    {"QueryByDeliverDate", 0x60030008, kMrpiQueryByDeliverDate},
    {"GetRecordByCondition", 0x60030009, kMrpiGetRecordByCondition},
    {"GetItemNoByProdNo", 0x6003000A, kMrpiGetItemNoByProdNo},
    {"QueryItemNo", 0x6003000B, kMrpiQueryItemNo},
    {"QueryEItemNo", 0x6003000C, kMrpiQueryEItemNo},
    {"QueryItemNoRecord", 0x6003000D, kMrpiQueryItemNoRecord},
    {"DeleteAllPMrpiRecord", 0x6003000E, kMrpiDeleteAll},
    // 0x6003000F is the private DeleteReduceRecord, not exposed
    {"AddRecord", 0x60030010, kMrpiEntity},
    {"getProdNoItemNo", 0x60030011, kMrpiGetProdNoItemNo, ReturnKind::Variant},
    {"getProdNoItemNoByPMrpi", 0x60030012, kMrpiGetProdNoItemNoByPMrpi, ReturnKind::Variant},
    {"QueryAllNullRecord", 0x60030013, kMrpiQueryAllNullRecord},
};

constexpr std::array kClasses{
    ClassInfo{"clsDataPOrder", "Tovrand.clsDataPOrder", "{5D64BF0B-F15D-4A6C-B262-29C460B35EED}",
              "_clsDataPOrder", "{A1867ADC-20CE-4CAF-A3D8-8E09D0CFA521}", kPOrderMembers},
    ClassInfo{"clsDataPOrderChk", "Tovrand.clsDataPOrderChk", "{B36B9CE9-7F0A-4974-9E6A-92475F8B5DE1}",
              "_clsDataPOrderChk", "{BAA9A297-12F0-4323-AF74-08A5074AA44D}", kPOrderChkMembers},
    ClassInfo{"clsDataPMrph", "Tovrand.clsDataPMrph", "{993A813C-9887-45E5-B2CB-69B88F7C7B5A}",
              "_clsDataPMrph", "{EC97ADA0-E5EC-4409-ABCB-8AA13EDFB2BA}", kPMrphMembers},
    ClassInfo{"clsDataPMrpi", "Tovrand.clsDataPMrpi", "{3698A517-264E-45AE-9330-2B0027550447}",
              "_clsDataPMrpi", "{C142169A-5611-4E89-8D97-A48B6B10F632}", kPMrpiMembers},
};

}  // namespace

const MemberInfo* ClassInfo::find(std::string_view member) const {
  for (const MemberInfo& m : members)
    if (equalsIgnoreCase(m.name, member)) return &m;
  return nullptr;
}

std::span<const ClassInfo> componentClasses() {
  return kClasses;
}

const ClassInfo* findComponentClass(std::string_view name) {
  for (const ClassInfo& c : kClasses)
    if (c.name == name || c.progId == name) return &c;
  return nullptr;
}

}  // namespace tovrand
