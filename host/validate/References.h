// The reference count of an object, as seen from outside.
#pragma once

#include "com/Unknown.h"

// References on the object before the call. One of the caller's own is needed: a Release at 0 blocks for good.
unsigned int CountOf(IUnknown& object);

// Throws CFinding unless the object, just handed out, carries a reference for its receiver. Releases nothing.
void ExpectOwnReference(IUnknown& object);

// Throws CFinding unless giving up the only reference on the object answers 0.
void ExpectLastRelease(IUnknown* object);
