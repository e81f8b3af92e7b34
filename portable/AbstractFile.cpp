// What every file shares.
#include "portable/AbstractFile.h"

namespace {

constexpr int kFixedDrive = 3;  // Win32 DRIVE_FIXED

}  // namespace

PFile::PFile() = default;

PFile::~PFile() = default;

int PFile::GetDrive() { return kFixedDrive; }
