// Identities of the interfaces. A number once given never changes its interface.
#pragma once

#include "portable/Export.h"

constexpr unsigned long IID_IUnknown = 0;
constexpr unsigned long IID_IStatus = 1;
constexpr unsigned long IID_IProcess = 2;
constexpr unsigned long IID_ISourceName = 3;
constexpr unsigned long IID_IAggregatable = 4;
constexpr unsigned long IID_IAudioRawReader = 6;
constexpr unsigned long IID_IAudioFileOpener = 11;
constexpr unsigned long IID_IConvertorFactory = 13;
constexpr unsigned long IID_IComponentEnum = 16;
constexpr unsigned long IID_IProfile = 19;
constexpr unsigned long IID_ISeekable = 20;
constexpr unsigned long IID_IAudioRawBlockInfo = 21;
constexpr unsigned long IID_IExtensionList = 22;
constexpr unsigned long IID_IAudioRawWriter = 23;
constexpr unsigned long IID_IInfoReader = 25;
constexpr unsigned long IID_IConfigurable = 33;
constexpr unsigned long IID_IURLSourceHandler = 34;
constexpr unsigned long IID_IComponentAbout = 43;
constexpr unsigned long IID_IFeatureSupport = 45;
constexpr unsigned long IID_IAdvancedFormat = 46;
constexpr unsigned long IID_IStatusCategory = 48;
constexpr unsigned long IID_IRealFormat = 60;
constexpr unsigned long IID_IIndexArray = 61;
constexpr unsigned long IID_IAppWindow = 63;
constexpr unsigned long IID_IAudioPluginMgrInternal = 64;
constexpr unsigned long IID_IComponentOrderMgr = 65;

// Numbers from 1000 up are interfaces between hosts and plug-ins; the library neither answers nor asks for them.
constexpr unsigned long IID_IAudioTargetOpener = 1000;
constexpr unsigned long IID_ITargetTags = 1001;
constexpr unsigned long IID_INamedSettings = 1002;
constexpr unsigned long IID_IClippingCount = 1003;

// 1 when both identities are the same number, else 0. [any thread]
KELO_EXPORT int IsEqualIID(unsigned long left, unsigned long right);
