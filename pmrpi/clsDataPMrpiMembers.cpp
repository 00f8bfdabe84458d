#include "frame/Invoke.h"
#include "pmrpi/clsDataPMrpi.h"

namespace tovrand {

namespace {

using K = ParamKind;

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
    member<&clsDataPMrpi::QueryPMrpiStatus>("QueryPMrpiStatus", 0x60030002, kMrpiQueryPMrpiStatus),
    member<&clsDataPMrpi::UpdatePMrpiStatus>("UpdatePMrpiStatus", 0x60030003, kMrpiEntity),
    member<&clsDataPMrpi::UpdatePMrphStatus>("UpdatePMrphStatus", 0x60030004, kMrpiMrphEntity),
    member<&clsDataPMrpi::UpdateRecord>("UpdateRecord", 0x60030005, kMrpiEntity),
    member<&clsDataPMrpi::QueryByID>("QueryByID", 0x60030006, kMrpiQueryByID),
    member<&clsDataPMrpi::QueryByIDForPur>("QueryByIDForPur", 0x60030007, kMrpiQueryByIDForPur),
    member<&clsDataPMrpi::QueryByDeliverDate>("QueryByDeliverDate", 0x60030008, kMrpiQueryByDeliverDate),
    member<&clsDataPMrpi::GetRecordByCondition>("GetRecordByCondition", 0x60030009,
                                                kMrpiGetRecordByCondition),
    member<&clsDataPMrpi::GetItemNoByProdNo>("GetItemNoByProdNo", 0x6003000A, kMrpiGetItemNoByProdNo),
    member<&clsDataPMrpi::QueryItemNo>("QueryItemNo", 0x6003000B, kMrpiQueryItemNo),
    member<&clsDataPMrpi::QueryEItemNo>("QueryEItemNo", 0x6003000C, kMrpiQueryEItemNo),
    member<&clsDataPMrpi::QueryItemNoRecord>("QueryItemNoRecord", 0x6003000D, kMrpiQueryItemNoRecord),
    member<&clsDataPMrpi::DeleteAllPMrpiRecord>("DeleteAllPMrpiRecord", 0x6003000E, kMrpiDeleteAll),
    // 0x6003000F is the private DeleteReduceRecord, not exposed
    member<&clsDataPMrpi::AddRecord>("AddRecord", 0x60030010, kMrpiEntity),
    member<&clsDataPMrpi::getProdNoItemNo>("getProdNoItemNo", 0x60030011, kMrpiGetProdNoItemNo),
    member<&clsDataPMrpi::getProdNoItemNoByPMrpi>("getProdNoItemNoByPMrpi", 0x60030012,
                                                  kMrpiGetProdNoItemNoByPMrpi),
    member<&clsDataPMrpi::QueryAllNullRecord>("QueryAllNullRecord", 0x60030013, kMrpiQueryAllNullRecord),
};

constexpr ClassInfo kClass{"clsDataPMrpi",
                           "Tovrand.clsDataPMrpi",
                           "{3698A517-264E-45AE-9330-2B0027550447}",
                           "_clsDataPMrpi",
                           "{C142169A-5611-4E89-8D97-A48B6B10F632}",
                           kPMrpiMembers,
                           &createDispatch<clsDataPMrpi>};

}  // namespace

const ClassInfo& clsDataPMrpi::Members() {
  return kClass;
}

}  // namespace tovrand
