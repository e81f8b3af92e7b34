// Stands between the library and iconv: notes which converters are opened and can refuse to open them.
#pragma once

#include <set>
#include <string>
#include <vector>

struct SIconvWatch {
    // "to<from" of every iconv_open, in order.
    std::vector<std::string> m_opened;
    // Converters that are open.
    int m_nOpen = 0;
    // Refuses every charset but these, unless empty. "<none>" is no charset.
    std::set<std::string> m_onlyCharsets;
};

// The watch of this process.
SIconvWatch& IconvWatch();
