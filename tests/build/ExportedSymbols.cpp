// What a shared library shows and what it takes, as nm tells it.
#include "tests/build/ExportedSymbols.h"

#include <sstream>
#include <stdexcept>

#include "tests/build/RunCommand.h"

namespace {

bool StartsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool IsOfASanitizer(const std::string& mangled) {
    for (const char* const prefix : {"__asan", "__ubsan", "__odr_asan", "__tsan", "__sanitizer", "___asan"}) {
        if (StartsWith(mangled, prefix)) return true;
    }
    return false;
}

std::vector<std::string> Listing(const std::string& options, const std::string& library) {
    const SCommandResult result = RunCommand(KELO_NM " -D " + options + " " + Quoted(library));
    if (result.m_nStatus != 0) throw std::runtime_error("nm does not read " + library);
    return Lines(result.m_strOutput);
}

}  // namespace

std::vector<SExportedSymbol> ReadExports(const std::string& library) {
    const std::vector<std::string> mangled = Listing("--defined-only --no-demangle --no-sort", library);
    const std::vector<std::string> demangled = Listing("--defined-only --demangle --no-sort", library);
    if (mangled.size() != demangled.size()) throw std::runtime_error("nm tells two stories about " + library);

    std::vector<SExportedSymbol> symbols;
    for (std::size_t i = 0; i < mangled.size(); ++i) {
        std::istringstream fields(mangled[i]);
        std::string address, kind, name;
        fields >> address >> kind >> name;
        if (IsOfASanitizer(name)) continue;
        symbols.push_back({name, demangled[i].substr(address.size() + kind.size() + 2), kind[0]});
    }
    return symbols;
}

std::vector<std::string> ReadImports(const std::string& library) {
    std::vector<std::string> names;
    for (const std::string& line :
         Listing("--undefined-only --demangle --without-symbol-versions --no-sort", library)) {
        // Nothing but a letter stands before the name.
        const std::size_t letter = line.find_first_not_of(' ');
        names.push_back(line.substr(letter + 2));
    }
    return names;
}
