// What a process has and is that a plug-in should leave as it was.
#pragma once

#include <set>
#include <string>

// Each line is one thing: two states differ in the lines that have come and gone.
using CStateLines = std::set<std::string>;

CStateLines Threads();
CStateLines OpenDescriptors();
CStateLines CurrentDirectory();
CStateLines Locale();
CStateLines SignalActions();
CStateLines BlockedSignals();
CStateLines FileCreationMask();
CStateLines Environment();
CStateLines FloatingPointMode();

// "gone: a, b; new: c"; empty for equal states.
std::string ChangeText(const CStateLines& before, const CStateLines& after);
