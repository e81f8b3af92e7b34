// Common face of the locking objects.
#include "portable/PosixSyncObject.h"

CPosixSyncObject::CPosixSyncObject() : m_pMutexRecord(nullptr) {}

CPosixSyncObject::~CPosixSyncObject() = default;
