// Which convertors are alive.
#pragma once

#include <atomic>

// A member of each convertor; the plug-in may be unloaded only while none is alive. [any thread]
class CLiveConvertor {
public:
    CLiveConvertor() { ++s_nAlive; }
    ~CLiveConvertor() { --s_nAlive; }

    CLiveConvertor(const CLiveConvertor&) = delete;
    CLiveConvertor& operator=(const CLiveConvertor&) = delete;

    static bool AnyAlive() { return s_nAlive != 0; }

private:
    static inline std::atomic<int> s_nAlive{0};
};
