// A locale whose characters are single bytes.
#pragma once

#include <locale.h>
#include <stdlib.h>

#include <string>

#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"

// Compiles the locale for ISO-8859-15 from the system's sources and stands in it while it lives.
class CEightBitLocale {
public:
    CEightBitLocale() {
        const std::string compile = "localedef -i en_US -f ISO-8859-15 " + (m_scratch / kName) + " >/dev/null 2>&1";
        m_bThere = system(compile.c_str()) == 0 && setlocale(LC_CTYPE, kName) != nullptr;
    }
    ~CEightBitLocale() { setlocale(LC_CTYPE, "C"); }

    CEightBitLocale(const CEightBitLocale&) = delete;
    CEightBitLocale& operator=(const CEightBitLocale&) = delete;

    // False where the sources are not installed.
    bool IsThere() const { return m_bThere; }

private:
    static constexpr char kName[] = "en_US.ISO-8859-15";

    CScratchDirectory m_scratch;
    CScopedVariable m_path{"LOCPATH", m_scratch.Path().c_str()};
    bool m_bThere = false;
};
