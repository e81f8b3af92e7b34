// An open libsndfile handle.
#pragma once

#include <sndfile.h>

#include <memory>

struct SSndFileClose {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

using CSndFileHandle = std::unique_ptr<SNDFILE, SSndFileClose>;
