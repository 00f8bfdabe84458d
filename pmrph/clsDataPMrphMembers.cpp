#include "frame/Invoke.h"
#include "pmrph/clsDataPMrph.h"

namespace tovrand {

namespace {

using K = ParamKind;

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
    member<&clsDataPMrph::QueryBOrderhRecordset>("QueryBOrderhRecordset", 0x60030002,
                                                 kMrphQueryBOrderhRecordset),
    member<&clsDataPMrph::QueryPMrphRecordset>("QueryPMrphRecordset", 0x60030003, kMrphQueryPMrphRecordset),
    member<&clsDataPMrph::QueryPMrphStatus>("QueryPMrphStatus", 0x60030004, kMrphEntity),
    member<&clsDataPMrph::QueryByItemNo>("QueryByItemNo", 0x60030005, kMrphObjEntity),
    member<&clsDataPMrph::UpdateRecord>("UpdateRecord", 0x60030006, kMrphEntity),
    member<&clsDataPMrph::QueryByIDForPur>("QueryByIDForPur", 0x60030007, kMrphQueryByIDForPur),
    member<&clsDataPMrph::QueryByDeliverDate>("QueryByDeliverDate", 0x60030008, kMrphQueryByDeliverDate),
    member<&clsDataPMrph::QueryMonthDate>("QueryMonthDate", 0x60030009, kMrphColl),
    member<&clsDataPMrph::QueryProdNo>("QueryProdNo", 0x6003000A, kMrphColl),
    member<&clsDataPMrph::QueryStatus>("QueryStatus", 0x6003000B, kMrphQueryStatus),
    member<&clsDataPMrph::QueryProdNoRecord>("QueryProdNoRecord", 0x6003000C, kMrphEntity),
    member<&clsDataPMrph::AddRecord1>("AddRecord1", 0x6003000D, kMrphAddRecord1),
    member<&clsDataPMrph::AddRecord>("AddRecord", 0x6003000E, kMrphEntity),
    // 0x6003000F belongs to a private routine and is not exposed
    member<&clsDataPMrph::AccountData>("AccountData", 0x60030010, kMrphAccountData),
};

constexpr ClassInfo kClass{"clsDataPMrph",
                           "Tovrand.clsDataPMrph",
                           "{993A813C-9887-45E5-B2CB-69B88F7C7B5A}",
                           "_clsDataPMrph",
                           "{EC97ADA0-E5EC-4409-ABCB-8AA13EDFB2BA}",
                           kPMrphMembers,
                           &createDispatch<clsDataPMrph>};

}  // namespace

const ClassInfo& clsDataPMrph::Members() {
  return kClass;
}

}  // namespace tovrand
