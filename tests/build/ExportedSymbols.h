// What a shared library shows and what it takes, as nm tells it.
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

// The demangled names of the symbols that other libraries have to bring, without their versions.
std::vector<std::string> ReadImports(const std::string& library);
