// The manager's own settings dialog.
#include "com/SettingsDialogRun.h"
#include "pluginmgr/AudioPluginMgr.h"

// The stored pointer itself, not what GetAppWindow makes of it.
bool CAudioPluginMgr::Configure() { return RunAudioFormatSettingsDialog(m_pAppWindow); }
