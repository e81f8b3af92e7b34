// The record of a directory entry.
#include "portable/PortableFileInfo.h"

CPortableFileInfo::CPortableFileInfo() : m_nAttributes(0), m_nLength(0), m_nReserved(0) {}

CPortableFileInfo::CPortableFileInfo(const CPortableFileInfo& other) = default;

CPortableFileInfo& CPortableFileInfo::operator=(const CPortableFileInfo& other) = default;

CPortableFileInfo::~CPortableFileInfo() = default;
