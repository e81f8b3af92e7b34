// Room for handlers of signals that come because the stack is full.
#include "host/SignalStack.h"

#include <signal.h>

#include <array>

namespace {

// Far more than a handler that writes a line takes, with the largest register set that the kernel saves.
thread_local std::array<char, 65536> t_stack;

}  // namespace

void UseSignalStack() {
    stack_t earlier = {};
    // A sanitizer has its own.
    if (sigaltstack(nullptr, &earlier) == 0 && (earlier.ss_flags & SS_DISABLE) == 0) return;
    stack_t stack = {};
    stack.ss_sp = t_stack.data();
    stack.ss_size = t_stack.size();
    sigaltstack(&stack, nullptr);
}
