// File objects for names that are absolute and resolved already.
#pragma once

#include <memory>

#include "portable/PortableFile.h"

// Spares the walk through every directory of the name that the constructor of CPortableFile makes.
struct SResolvedFile {
    // A closed file of open mode 4 that is named exactly `name`, which may be empty.
    static std::unique_ptr<CPortableFile> Make(const char* name);
};
