#pragma once

#include <windows.h>

#include <oaidl.h>

#include "com/ComServer.h"
#include "entities/Entity.h"

namespace tovrand::velmora {

using com::ComRef;
using com::DualObject;

// Object creation for the class factories; each answers the requested interface.
HRESULT createEntity(const EntityClass& cls, REFIID riid, void** out);
HRESULT createDbConnection(REFIID riid, void** out);
HRESULT createCollection(REFIID riid, void** out);

}  // namespace tovrand::velmora
