#pragma once

#include "platform/StatusItemHost.h"

namespace brindle {

/// A desktop that has a place for status items, or has none.
class FakeStatusItemHost final : public StatusItemHost {
public:
    bool hasPlace = true;

    [[nodiscard]] bool isAvailable() const override { return hasPlace; }
};

} // namespace brindle
