// File objects for names that are absolute and resolved already.
#include "portable/ResolvedFile.h"

std::unique_ptr<CPortableFile> SResolvedFile::Make(const char* name) {
    auto file = std::make_unique<CPortableFile>(nullptr, CPortableFile::OM_READ_WRITE);
    file->m_strName = name;
    return file;
}
