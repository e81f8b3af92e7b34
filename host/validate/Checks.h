// The groups of checks, one file each in checks/.
#pragma once

#include "host/validate/Check.h"

CCheckList EntryChecks();
CCheckList CollectionChecks();
CCheckList ComponentChecks();
CCheckList ExtensionChecks();
CCheckList DecoderChecks();
CCheckList RefusalChecks();
CCheckList SourceChecks();
CCheckList ReadingChecks();
CCheckList SourceDetailChecks();
CCheckList SeekChecks();
CCheckList EncoderChecks();
CCheckList WritingChecks();
CCheckList ConvertorChecks();
CCheckList ConversionChecks();
CCheckList HandlerChecks();
CCheckList SettingChecks();
CCheckList StatusChecks();
CCheckList CountChecks();
CCheckList QueryChecks();
CCheckList AggregationChecks();
CCheckList WrappingChecks();
CCheckList UnloadChecks();
CCheckList ProcessChecks();
