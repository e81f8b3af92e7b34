// Room for handlers of signals that come because the stack is full.
#pragma once

// From here on this thread runs handlers with SA_ONSTACK on a stack of their own, sigaltstack(2).
void UseSignalStack();
