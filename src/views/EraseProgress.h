#pragma once

#include "efi/EraseOperationManager.h"
#include "shell/Color.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// What the erase dialog shows and offers in the manager's state. Names are handed out as they are: whoever shows them
/// makes them visible text.
class EraseProgress {
public:
    enum class Buttons { none, cancelAndErase, done };

    struct Symbol {
        std::string_view name;
        Color color;

        bool operator==(const Symbol &) const = default;
    };

    explicit EraseProgress(const EraseOperationManager &manager) : m_manager(manager) {} ///< Outlives this.

    // The head.
    [[nodiscard]] Symbol symbol() const;
    [[nodiscard]] std::string title() const;
    [[nodiscard]] std::string name() const; ///< Of what is erased; empty: not shown.
    [[nodiscard]] std::string line() const; ///< Beneath the name; empty: not shown.

    // While it is confirmed.
    [[nodiscard]] std::string_view scopeNote() const;
    [[nodiscard]] std::string confirmPrompt() const;
    [[nodiscard]] std::optional<std::string> mismatchText() const;

    [[nodiscard]] Buttons buttons() const; ///< None while it is erased: that can't be stopped.

private:
    [[nodiscard]] bool isOfPartition() const { return m_manager.eraseScope() == EraseScope::partition; }

    const EraseOperationManager &m_manager;
};

} // namespace brindle
