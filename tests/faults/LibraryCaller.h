// Whether a call comes from the library under test.
#pragma once

// `address` lies behind the call, as __builtin_return_address(0) gives it. Allocates nothing. [any thread]
bool IsInLibrary(const void* address);

// The same, and also when the C++ library calls for the library; `address` is still on the stack. [any thread]
bool ServesLibrary(const void* address);
