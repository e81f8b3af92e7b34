// What a shared library shows, as nm tells it.
#pragma once

#include <string>
#include <vector>

struct SExportedSymbol {
    std::string m_strMangled;
    std::string m_strName;  // demangled
    char m_chKind;          // nm's letter
};

// The defined dynamic symbols without those that the sanitizers add.
std::vector<SExportedSymbol> ReadExports(const std::string& library);
