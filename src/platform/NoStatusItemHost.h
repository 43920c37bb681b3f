#pragma once

#include "platform/StatusItemHost.h"

namespace brindle {

/// No icon can be shown.
class NoStatusItemHost final : public StatusItemHost {
public:
    [[nodiscard]] bool isAvailable() const override { return false; }
};

} // namespace brindle
