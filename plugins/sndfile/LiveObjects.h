// How many streams and targets of this plug-in are alive. [any thread]
#pragma once

// Counts its owner from construction to destruction.
class CLiveObject {
public:
    CLiveObject();
    ~CLiveObject();

    CLiveObject(const CLiveObject&) = delete;
    CLiveObject& operator=(const CLiveObject&) = delete;
};

bool HasLiveObjects();
