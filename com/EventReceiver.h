// Receiver of the manager's broadcasts.
#pragma once

#include "com/Unknown.h"

// Implemented by hosts and plug-ins; called by the manager's SendEvent on the sender's thread, with the manager's lock
// held. It may send and subscribe from inside; it must not shorten the list of receivers.
class IEventReceiver : public IUnknown {
public:
    // Numbers and parameters are a matter between senders and receivers; `parameter` is borrowed. The result is
    // ignored.
    virtual bool OnEvent(unsigned int event, IUnknown* parameter) = 0;

protected:
    ~IEventReceiver() = default;
};
