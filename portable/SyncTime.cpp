// The millisecond tick counter.
#include "portable/PortableTime.h"

timeval starttime = {0, 0};

unsigned int CPortableTime::GetSyncTime() {
    timeval current = {0, 0};
    gettimeofday(&current, nullptr);
    if (starttime.tv_sec == 0) starttime = current;

    long seconds = current.tv_sec - starttime.tv_sec;
    long microseconds = current.tv_usec - starttime.tv_usec;
    if (microseconds < 0) {
        --seconds;
        microseconds += 1000000;
    }
    return static_cast<unsigned int>(seconds * 1000 + microseconds / 1000);
}
