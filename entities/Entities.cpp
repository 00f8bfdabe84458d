#include "entities/Entities.h"

#include <array>

#include "vb/VbError.h"

namespace tovrand {

namespace {

#define TOVRAND_PROPERTY_INFO(name, type) PropertyInfo{#name, PropertyType::type},

constexpr std::array kPOrder{TOVRAND_CLSENTPORDER(TOVRAND_PROPERTY_INFO)};
constexpr std::array kPOrderChk{TOVRAND_CLSENTPORDERCHK(TOVRAND_PROPERTY_INFO)};
constexpr std::array kBOrderh{TOVRAND_CLSENTBORDERH(TOVRAND_PROPERTY_INFO)};
constexpr std::array kBOrderi{TOVRAND_CLSENTBORDERI(TOVRAND_PROPERTY_INFO)};
constexpr std::array kPMrph{TOVRAND_CLSENTPMRPH(TOVRAND_PROPERTY_INFO)};
constexpr std::array kWStockQtys{TOVRAND_CLSENTWSTOCKQTYS(TOVRAND_PROPERTY_INFO)};
constexpr std::array kPMrpi{TOVRAND_CLSENTPMRPI(TOVRAND_PROPERTY_INFO)};
constexpr std::array kEItem{TOVRAND_CLSENTEITEM(TOVRAND_PROPERTY_INFO)};
constexpr std::array kEBom{TOVRAND_CLSENTEBOM(TOVRAND_PROPERTY_INFO)};

#undef TOVRAND_PROPERTY_INFO

// IIDs fixed by the installed Velmora where they are known; the others are this Velmora's own.
const EntityClass kClasses[] = {
    {"clsEntPOrder", "Velmora.clsEntPOrder", "{A810F928-BD92-4915-BB21-DFECAE154B0A}", kPOrder},
    {"clsEntPOrderChk", "Velmora.clsEntPOrderChk", "{A5A67BA8-A63E-4AB1-8147-EECDD6502B12}", kPOrderChk},
    {"clsEntBOrderh", "Velmora.clsEntBOrderh", "{BD052C5E-A82B-44E8-86CC-CF54ACC4FE3E}", kBOrderh},
    {"clsEntBOrderi", "Velmora.clsEntBOrderi", "{9262B2F4-DB97-4FF2-B1A5-E1B4F3DD6EA6}", kBOrderi},
    {"clsEntPMrph", "Velmora.clsEntPMrph", "{9051451E-4B1C-47BF-A192-5CC4841E29B5}", kPMrph},
    {"clsEntWStockQtys", "Velmora.clsEntWStockQtys", "{65A6782A-FFA0-4C07-9F46-9941507658EC}", kWStockQtys},
    {"clsEntPMrpi", "Velmora.clsEntPMrpi", "{6CFF1194-42FC-4628-8122-05F7D1B109DD}", kPMrpi},
    {"clsEntEItem", "Velmora.clsEntEItem", "{3228BFB1-B0CD-4A1B-9268-EE8E47CF8EAE}", kEItem},
    {"clsEntEBom", "Velmora.clsEntEBom", "{BAF46A20-3977-4889-89ED-E45736F3F849}", kEBom},
};

constexpr std::array<const EntityClass*, 9> kClassList{&kClasses[0], &kClasses[1], &kClasses[2],
                                                       &kClasses[3], &kClasses[4], &kClasses[5],
                                                       &kClasses[6], &kClasses[7], &kClasses[8]};

Entity checkedView(Entity e, const EntityClass& cls) {
  if (e.isNothing()) throw VbError::of(vberr::kObjectNotSet);
  if (!e.store()->conformsTo(cls)) throw VbError::of(vberr::kTypeMismatch);
  return e;
}

}  // namespace

#define TOVRAND_ENTITY_DEFINE(cls, index)                  \
  const EntityClass& cls::Class() {                        \
    return kClasses[index];                                \
  }                                                        \
  cls::cls() : Entity(newNativeEntity(kClasses[index])) {} \
  cls::cls(Entity e) : Entity(checkedView(std::move(e), kClasses[index])) {}

TOVRAND_ENTITY_DEFINE(clsEntPOrder, 0)
TOVRAND_ENTITY_DEFINE(clsEntPOrderChk, 1)
TOVRAND_ENTITY_DEFINE(clsEntBOrderh, 2)
TOVRAND_ENTITY_DEFINE(clsEntBOrderi, 3)
TOVRAND_ENTITY_DEFINE(clsEntPMrph, 4)
TOVRAND_ENTITY_DEFINE(clsEntWStockQtys, 5)
TOVRAND_ENTITY_DEFINE(clsEntPMrpi, 6)
TOVRAND_ENTITY_DEFINE(clsEntEItem, 7)
TOVRAND_ENTITY_DEFINE(clsEntEBom, 8)

#undef TOVRAND_ENTITY_DEFINE

std::span<const EntityClass* const> entityClasses() {
  return kClassList;
}

const EntityClass* findEntityClass(std::string_view name) {
  for (const EntityClass* cls : kClassList)
    if (cls->name == name) return cls;
  return nullptr;
}

}  // namespace tovrand
