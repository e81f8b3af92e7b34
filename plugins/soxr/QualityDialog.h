// The dialog in which a person chooses the resampling quality.
#pragma once

#include "plugins/soxr/ConversionSettings.h"

struct _GtkWindow;

// Shows `quality` and stores what was chosen instead. False, with nothing stored, when the person cancels and where
// GTK 2 cannot show anything. `parent` may be null. [GTK thread]
bool AskResamplingQuality(_GtkWindow* parent, EResamplingQuality& quality) noexcept;
