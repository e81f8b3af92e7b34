// What a shared library shows, as nm tells it.
#pragma once

#include <set>
#include <string>
#include <vector>

struct SExportedSymbol {
    std::string m_strMangled;
    std::string m_strName;  // demangled
    char m_chKind;          // nm's letter
};

// The defined dynamic symbols without those that the sanitizers add.
std::vector<SExportedSymbol> ReadExports(const std::string& library);

// Those that are neither expected nor belong to a class of the contract: a member, a virtual table or type information
// of a class whose members `expected` lists. Names of the standard library never belong.
std::vector<std::string> FindForeignNames(const std::vector<std::string>& exported,
                                          const std::set<std::string>& expected);
