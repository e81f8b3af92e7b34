// The manager's own settings dialog.
#include "pluginmgr/AudioPluginMgr.h"

// False: there is no dialog that could have been accepted.
bool CAudioPluginMgr::Configure() { return false; }
