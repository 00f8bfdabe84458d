#include "frame/Invoke.h"
#include "porder/clsDataPOrder.h"

namespace tovrand {

namespace {

using K = ParamKind;

constexpr ParamInfo kPOrderQueryByStrSql[] = {{"colPOrder", K::Collection, "clsEntPOrder"},
                                              {"strSql", K::String}};
constexpr ParamInfo kPOrderGetALLChkList[] = {{"collAllchklist", K::Collection, "clsEntPOrder"}};
constexpr ParamInfo kPOrderEntity[] = {{"Entity", K::Entity, "clsEntPOrder"}};
constexpr ParamInfo kPOrderCheckCustProdNo[] = {
    {"Entity", K::Entity, "clsEntPOrder"}, {"CustNo", K::String}, {"ProNo", K::Double}};
constexpr ParamInfo kPOrderQueryAllProdNo[] = {{"dblProdNo", K::DoubleArray}};

constexpr MemberInfo kPOrderMembers[] = {
    member<&clsDataPOrder::QueryByStrSql>("QueryByStrSql", 0x60030002, kPOrderQueryByStrSql),
    member<&clsDataPOrder::GetALLChkList>("GetALLChkList", 0x60030003, kPOrderGetALLChkList),
    member<&clsDataPOrder::QueryItem>("QueryItem", 0x60030004, kPOrderEntity),
    member<&clsDataPOrder::CheckCustProdNo>("CheckCustProdNo", 0x60030005, kPOrderCheckCustProdNo),
    member<&clsDataPOrder::AddRecord>("AddRecord", 0x60030006, kPOrderEntity),
    member<&clsDataPOrder::UpdateRecord>("UpdateRecord", 0x60030007, kPOrderEntity),
    member<&clsDataPOrder::UpdateOrderOutNo>("UpdateOrderOutNo", 0x60030008, kPOrderEntity),
    member<&clsDataPOrder::QueryAllProdNo>("QueryAllProdNo", 0x60030009, kPOrderQueryAllProdNo),
};

constexpr ClassInfo kClass{"clsDataPOrder",
                           "Tovrand.clsDataPOrder",
                           "{5D64BF0B-F15D-4A6C-B262-29C460B35EED}",
                           "_clsDataPOrder",
                           "{A1867ADC-20CE-4CAF-A3D8-8E09D0CFA521}",
                           kPOrderMembers,
                           &createDispatch<clsDataPOrder>};

}  // namespace

const ClassInfo& clsDataPOrder::Members() {
  return kClass;
}

}  // namespace tovrand
