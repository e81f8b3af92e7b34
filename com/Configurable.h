// Settings and about boxes of components.
#pragma once

#include "com/Unknown.h"

// Implemented by the manager (the audio format settings dialog) and by components with settings of their own.
class IConfigurable : public IUnknown {
public:
    // Shows the settings until the person closes them. True when they were accepted. [GTK thread]
    virtual bool Configure() = 0;

protected:
    ~IConfigurable() = default;
};

// Implemented by components; called by the settings dialog.
class IComponentAbout : public IUnknown {
public:
    // Valid while the component lives. [any thread]
    virtual const char* GetVendor() = 0;

    // Whether About has something to show. [GTK thread]
    virtual bool HasAbout() = 0;

    // Shows the about box; only called while HasAbout says true. [GTK thread]
    virtual void About() = 0;

protected:
    ~IComponentAbout() = default;
};
