// Which objects of the plug-in are alive: it may be unloaded only while none is. [any thread]
#pragma once

#include <atomic>

// A member of every stream, target and convertor; also held by work that must not lose its code.
class CLiveObject {
public:
    CLiveObject() { ++s_nAlive; }
    ~CLiveObject() { --s_nAlive; }

    CLiveObject(const CLiveObject&) = delete;
    CLiveObject& operator=(const CLiveObject&) = delete;

    // Whether the plug-in has to stay.
    static bool AnyAlive() { return s_nAlive != 0; }

private:
    static inline std::atomic<int> s_nAlive{0};
};
