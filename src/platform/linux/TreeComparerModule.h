#pragma once

#include "platform/TreeComparison.h"

#include <string>

/// What the module exports: TreeComparer::run() of two folders.
extern "C" void brindleCompareTrees(const std::string &first, const std::string &second,
                                    brindle::TreeComparison &result);
