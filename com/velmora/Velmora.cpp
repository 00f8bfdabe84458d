// Velmora.dll: the entity classes, clsDbConnection and Collection, and how each is made.

#include <windows.h>

#include <string>
#include <vector>

#include "com/velmora/VelmoraObjects.h"
#include "entities/Entities.h"

namespace tovrand::velmora {

namespace {

// The classes of this library: CLSID, ProgID and how an object is made.
struct VelmoraClass {
  const char* clsid;
  const char* progId;
  const char* entity;  // the entity class, or nullptr for the other classes
};

constexpr VelmoraClass kClasses[] = {
    {"{1DAD93F4-6E46-4F5D-B868-53CE7FFDB3A8}", "Velmora.clsDbConnection", nullptr},
    {"{82336488-B95D-46E9-8199-1610673EB0CB}", "Velmora.Collection", nullptr},
    {"{E2B15753-E907-415D-A9DA-AE6AE01131F0}", "Velmora.clsEntPOrder", "clsEntPOrder"},
    {"{0754BA64-1E63-4948-ADD0-13FE21831108}", "Velmora.clsEntPOrderChk", "clsEntPOrderChk"},
    {"{434071F4-E23C-4A7B-B7E2-BAE2A423103E}", "Velmora.clsEntBOrderh", "clsEntBOrderh"},
    {"{2C5E4F85-BD3B-4D38-82EB-6A9F5FF668A0}", "Velmora.clsEntBOrderi", "clsEntBOrderi"},
    {"{4461D40D-6B11-4ED3-9E42-DD7DCA3CE378}", "Velmora.clsEntPMrph", "clsEntPMrph"},
    {"{1D442EA3-F4EA-4F17-95B4-9F5E9DB75258}", "Velmora.clsEntWStockQtys", "clsEntWStockQtys"},
    {"{3E7DAEB3-3161-482A-8A60-4435902A054D}", "Velmora.clsEntPMrpi", "clsEntPMrpi"},
    {"{86AB4C53-BE7E-42A8-906F-264A3CCA7D1F}", "Velmora.clsEntEItem", "clsEntEItem"},
    {"{BD6733E1-3E1E-4FCE-990C-3F55E5A16A01}", "Velmora.clsEntEBom", "clsEntEBom"},
};

HRESULT create(const VelmoraClass& c, REFIID riid, void** out) {
  if (!c.entity) {
    if (std::string(c.progId) == "Velmora.clsDbConnection") return createDbConnection(riid, out);
    return createCollection(riid, out);
  }
  const EntityClass* cls = findEntityClass(c.entity);
  if (!cls) return CLASS_E_CLASSNOTAVAILABLE;
  return createEntity(*cls, riid, out);
}

}  // namespace

}  // namespace tovrand::velmora

namespace tovrand::com {

// The classes of kClasses, in its order.
std::span<const ServerClass> serverClasses() {
  static const std::vector<ServerClass> classes = [] {
    std::vector<ServerClass> out;
    for (const velmora::VelmoraClass& c : velmora::kClasses)
      out.push_back(
          {c.clsid, c.progId, [&c](REFIID iid, void** object) { return velmora::create(c, iid, object); }});
    return out;
  }();
  return classes;
}

}  // namespace tovrand::com
