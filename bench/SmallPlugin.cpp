// A plug-in whose one component does nothing, to be loaded many times.
#include "sdk/Component.h"
#include "sdk/Plugin.h"

namespace {

class CIdleComponent final : public CComponent<> {
public:
    CIdleComponent() : CComponent("Idle", ACT_DECODER) {}
};

}  // namespace

KELO_PLUGIN(CIdleComponent);
