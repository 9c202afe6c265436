#ifndef CONSTANT_H
#define CONSTANT_H

#include "muxcore_export.h"

// Kept for hosts that derive their own constant holders from it; it has no members.
class MUXCORE_EXPORT Constant
{
public:
    Constant();
};

#endif // CONSTANT_H
