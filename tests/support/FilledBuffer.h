// The beginning of a stream that a decoder has opened.
#pragma once

#include <string>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/Process.h"
#include "stream/RawReader.h"

namespace support {

// Starts the stream and reads as many bytes as `buffer` has; whether both succeeded and all of them came.
inline bool StartAndFill(IUnknown* stream, std::string& buffer, IStatus** status) {
    const auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
    const auto reader = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
    const int size = static_cast<int>(buffer.size());
    int count = 0;
    EAudioRawState state = ARS_MORE;
    return process->Start(status) &&
           reader->RawRead(reinterpret_cast<unsigned char*>(buffer.data()), size, &count, state, status) &&
           count == size;
}

}  // namespace support
