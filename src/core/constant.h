#ifndef CONSTANT_H
#define CONSTANT_H

#include "muxcore_export.h"

/**
 * An empty base for hosts that derive their own holders of constants from it.
 *
 * It has no members and constructing one does nothing; it is kept so that such
 * host classes keep a common, exported base.
 */
class MUXCORE_EXPORT Constant
{
public:
    /// Does nothing.
    Constant();
};

#endif // CONSTANT_H
