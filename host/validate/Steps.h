// What this process is calling.
#pragma once

#include <string>

class CReportPage;

// Where TellStep writes from here on; null for nowhere, as it is at first. One thread.
void TellStepsTo(CReportPage* page);

// Names the call into the plug-in that comes next, for the case that it does not come back. One thread.
void TellStep(const std::string& step);
