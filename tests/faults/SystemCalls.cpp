// Stands between the library and the system's calls.
#include "tests/faults/SystemCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/types.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>

#include "portable/Export.h"
#include "tests/faults/LibraryCaller.h"

namespace {

CFaultyCall* g_pFault = nullptr;
const struct statfs64* g_pFileSystem = nullptr;

template <typename TFunction>
TFunction* Next(const char* name) {
    return reinterpret_cast<TFunction*>(dlsym(RTLD_NEXT, name));
}

bool IsStruck(ECall call, const void* caller) {
    return g_pFault != nullptr && IsInLibrary(caller) && g_pFault->Strikes(call);
}

// Whether the call fails, with errno set; `size` is cut where it is to succeed in part.
bool Fails(ECall call, const void* caller, std::size_t* size = nullptr) {
    if (!IsStruck(call, caller)) return false;
    const SFault& fault = g_pFault->GetFault();
    if (fault.m_nError != 0) errno = fault.m_nError;
    if (fault.m_nError == 0 && size != nullptr) *size = std::min(*size, fault.m_nMost);
    return fault.m_nError != 0;
}

}  // namespace

CFaultyCall::CFaultyCall(const SFault& fault) : m_fault(fault) { g_pFault = this; }

CFaultyCall::~CFaultyCall() { g_pFault = nullptr; }

bool CFaultyCall::Strikes(ECall call) {
    m_calls.push_back(call);
    if (call != m_fault.m_eCall) return false;
    ++m_nCount;
    return m_nCount >= m_fault.m_nFirst && m_nCount - m_fault.m_nFirst < m_fault.m_nTimes;
}

CFileSystemAnswer::CFileSystemAnswer(const struct statfs64& answer) { g_pFileSystem = &answer; }

CFileSystemAnswer::~CFileSystemAnswer() { g_pFileSystem = nullptr; }

extern "C" {

KELO_EXPORT int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const unsigned int mode = (flags & O_CREAT) != 0 ? va_arg(more, unsigned int) : 0;
    va_end(more);
    if (Fails(ECall::Open, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(const char*, int, ...)>("open64");
    return next(path, flags, mode);
}

KELO_EXPORT ssize_t read(int descriptor, void* buffer, std::size_t size) {
    if (Fails(ECall::Read, __builtin_return_address(0), &size)) return -1;
    static const auto next = Next<ssize_t(int, void*, std::size_t)>("read");
    return next(descriptor, buffer, size);
}

KELO_EXPORT ssize_t write(int descriptor, const void* data, std::size_t size) {
    if (Fails(ECall::Write, __builtin_return_address(0), &size)) return -1;
    static const auto next = Next<ssize_t(int, const void*, std::size_t)>("write");
    return next(descriptor, data, size);
}

KELO_EXPORT off64_t lseek64(int descriptor, off64_t offset, int origin) noexcept {
    if (Fails(ECall::Seek, __builtin_return_address(0))) return -1;
    static const auto next = Next<off64_t(int, off64_t, int)>("lseek64");
    return next(descriptor, offset, origin);
}

KELO_EXPORT int ftruncate64(int descriptor, off64_t length) noexcept {
    if (Fails(ECall::Truncate, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(int, off64_t)>("ftruncate64");
    return next(descriptor, length);
}

KELO_EXPORT int close(int descriptor) {
    static const auto next = Next<int(int)>("close");
    const int result = next(descriptor);
    return Fails(ECall::Close, __builtin_return_address(0)) ? -1 : result;
}

KELO_EXPORT DIR* opendir(const char* path) {
    if (Fails(ECall::OpenDirectory, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<DIR*(const char*)>("opendir");
    return next(path);
}

KELO_EXPORT dirent64* readdir64(DIR* directory) {
    if (Fails(ECall::ReadDirectory, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<dirent64*(DIR*)>("readdir64");
    return next(directory);
}

KELO_EXPORT char* realpath(const char* path, char* resolved) noexcept {
    if (Fails(ECall::ResolvePath, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<char*(const char*, char*)>("realpath");
    return next(path, resolved);
}

// What realpath becomes where buffers are checked.
KELO_EXPORT char* __realpath_chk(const char* path, char* resolved, std::size_t /*size*/) noexcept {
    if (Fails(ECall::ResolvePath, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<char*(const char*, char*)>("realpath");
    return next(path, resolved);
}

KELO_EXPORT ssize_t readlink(const char* path, char* text, std::size_t size) noexcept {
    if (Fails(ECall::ReadLink, __builtin_return_address(0), &size)) return -1;
    static const auto next = Next<ssize_t(const char*, char*, std::size_t)>("readlink");
    return next(path, text, size);
}

KELO_EXPORT int statfs64(const char* path, struct statfs64* status) noexcept {
    static const auto next = Next<int(const char*, struct statfs64*)>("statfs64");
    if (g_pFileSystem == nullptr || !IsInLibrary(__builtin_return_address(0))) return next(path, status);
    *status = *g_pFileSystem;
    return 0;
}

KELO_EXPORT char* tempnam(const char* directory, const char* prefix) noexcept {
    if (Fails(ECall::NameTemporary, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<char*(const char*, const char*)>("tempnam");
    return next(directory, prefix);
}

KELO_EXPORT int mkstemp64(char* name) {
    if (Fails(ECall::MakeTemporary, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(char*)>("mkstemp64");
    return next(name);
}

KELO_EXPORT char* getcwd(char* buffer, std::size_t size) noexcept {
    if (Fails(ECall::CurrentDirectory, __builtin_return_address(0))) return nullptr;
    static const auto next = Next<char*(char*, std::size_t)>("getcwd");
    return next(buffer, size);
}

KELO_EXPORT int remove(const char* path) noexcept {
    if (Fails(ECall::RemoveFile, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(const char*)>("remove");
    return next(path);
}

KELO_EXPORT int unlink(const char* path) noexcept {
    if (Fails(ECall::RemoveName, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(const char*)>("unlink");
    return next(path);
}

KELO_EXPORT int rmdir(const char* path) noexcept {
    if (Fails(ECall::RemoveDirectory, __builtin_return_address(0))) return -1;
    static const auto next = Next<int(const char*)>("rmdir");
    return next(path);
}
}
