#include "frame/Invoke.h"
#include "porderchk/clsDataPOrderChk.h"

namespace tovrand {

namespace {

using K = ParamKind;

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
    member<&clsDataPOrderChk::QueryBOrderiBkQty>("QueryBOrderiBkQty", 0x60030002, kChkBOrderi),
    member<&clsDataPOrderChk::JudgeExits>("JudgeExits", 0x60030003, kChkJudgeExits),
    member<&clsDataPOrderChk::UpdateRecord>("UpdateRecord", 0x60030004, kChkUpdateRecord),
    member<&clsDataPOrderChk::QueryAll>("QueryAll", 0x60030005, kChkQueryAll),
    member<&clsDataPOrderChk::QueryProdNoView>("QueryProdNoView", 0x60030006, kChkEntity),
    member<&clsDataPOrderChk::QueryMonthDate>("QueryMonthDate", 0x60030007, kChkColl),
    member<&clsDataPOrderChk::QueryProdNo>("QueryProdNo", 0x60030008, kChkColl),
    member<&clsDataPOrderChk::AddRecord>("AddRecord", 0x60030009, kChkAddRecord),
    member<&clsDataPOrderChk::QureyDatabase>("QureyDatabase", 0x6003000A, kChkQureyDatabase),
    member<&clsDataPOrderChk::QuerySalerID>("QuerySalerID", 0x6003000B, kChkQuerySalerID),
};

constexpr ClassInfo kClass{"clsDataPOrderChk",
                           "Tovrand.clsDataPOrderChk",
                           "{B36B9CE9-7F0A-4974-9E6A-92475F8B5DE1}",
                           "_clsDataPOrderChk",
                           "{BAA9A297-12F0-4323-AF74-08A5074AA44D}",
                           kPOrderChkMembers,
                           &createDispatch<clsDataPOrderChk>};

}  // namespace

const ClassInfo& clsDataPOrderChk::Members() {
  return kClass;
}

}  // namespace tovrand
