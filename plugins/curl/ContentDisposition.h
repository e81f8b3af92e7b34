// The file name in a Content-Disposition header (RFC 6266).
#pragma once

#include <string>
#include <string_view>

// Of "filename*" if it can be decoded, else of "filename"; without folders, in UTF-8 as far as the server keeps to it.
// Empty when there is none. [any thread]
std::string FileNameOfDisposition(std::string_view header);
