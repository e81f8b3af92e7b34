// The record of a directory entry.
// A record belongs to one thread at a time. [any thread]
#pragma once

#include "portable/BasicString.h"
#include "portable/Export.h"
#include "portable/PortableTime.h"

// Empty at construction, and no enumeration ever fills it; an entry's details come from its file object.
class KELO_EXPORT CPortableFileInfo {
public:
    CPortableFileInfo();

    // Copies every field.
    CPortableFileInfo(const CPortableFileInfo& other);
    CPortableFileInfo& operator=(const CPortableFileInfo& other);
    ~CPortableFileInfo();

    CBasicString<char> m_strName;
    unsigned int m_nAttributes;
    CPortableTime m_creationTime;
    CPortableTime m_lastAccessTime;
    CPortableTime m_lastWriteTime;
    long m_nLength;
    unsigned int m_nReserved;
};
