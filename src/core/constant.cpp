#include "core/constant.h"

Constant::Constant() = default;
