// Stands between the library and iconv: notes which converters are opened and can refuse to open them.
#pragma once

#include <string>
#include <vector>

struct SIconvWatch {
    // "to<from" of every iconv_open, in order.
    std::vector<std::string> m_opened;
    // Converters that are open.
    int m_nOpen = 0;
    // Refuses every charset but this one, unless null. "<none>" is no charset.
    const char* m_pOnlyCharset = nullptr;
};

// The watch of this process.
SIconvWatch& IconvWatch();
