#pragma once

#include "platform/BundleInfo.h"

namespace brindle {

/// A bundle that says all that it can, in which nothing is to be complained of but the identifier's capital letter.
inline BundleInfo completeBundle()
{
    return {.identifier = "com.orlane.Brindle",
            .shortVersion = "2.3.4",
            .version = "56",
            .displayName = "Brindle",
            .name = "Brindle",
            .executable = "Brindle"};
}

} // namespace brindle
