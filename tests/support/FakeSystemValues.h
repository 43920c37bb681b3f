#pragma once

#include "platform/SystemValues.h"

#include <optional>
#include <string>

namespace brindle {

/// A system that says what a test wants.
class FakeSystemValues final : public SystemValues {
public:
    std::string name = "macOS";
    std::optional<std::string> version = "15.1.0";

    [[nodiscard]] std::string systemName() const override { return name; }
    [[nodiscard]] std::optional<std::string> systemVersion() const override { return version; }
};

} // namespace brindle
