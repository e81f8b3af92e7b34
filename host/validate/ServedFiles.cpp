// What the validator's own web server has.
#include "host/validate/ServedFiles.h"

std::map<std::string, CBytes> ServedFiles() {
    const CBytes sample = MakeSampleFile();
    return {{kServedSample, sample}, {kServedOther, CBytes(sample.begin(), sample.end() - 4000)}};
}
