// Short ways for tests to ask streams and statuses.
#pragma once

#include <ostream>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "com/Status.h"
#include "stream/WavFormat.h"

inline bool operator==(const SWavFormat& left, const SWavFormat& right) {
    return SHeldWavFormat{left, 0} == SHeldWavFormat{right, 0};
}

inline std::ostream& operator<<(std::ostream& stream, const SWavFormat& format) {
    return stream << format.nSampleRate << " Hz, " << format.nBitsPerSample << " bits, " << format.nChannels
                  << " channels";
}

namespace support {

// The audio error of a status, AE_NONE when there is no status.
inline EAudioError ErrorOf(const CComPtr<IStatus>& status) { return status ? status->GetAudioError() : AE_NONE; }

// The text of a status, "" when there is no status.
inline const char* TextOf(const CComPtr<IStatus>& status) { return status ? status->GetDescription() : ""; }

// The code that QueryInterface answers, with what it handed out released again.
template <typename T>
int CodeOf(T* object, unsigned long identity) {
    void* face = nullptr;
    const int code = object->QueryInterface(identity, &face);
    if (face != nullptr) static_cast<IUnknown*>(face)->Release();
    return code;
}

}  // namespace support
