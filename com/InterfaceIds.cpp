// Comparison of interface identities.
#include "com/InterfaceIds.h"

int IsEqualIID(unsigned long left, unsigned long right) { return left == right ? 1 : 0; }
