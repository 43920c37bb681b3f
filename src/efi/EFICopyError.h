#pragma once

#include "base/Error.h"

#include <string_view>

namespace brindle {

/// Why a copy of an EFI folder ended before its end. The domain is "EFICopyError", the code the number of the case.
class EFICopyError : public Error {
public:
    enum class Case {
        copyFailed,
        efiNotMounted,
        sourceEFINotFound,
        sourceEFIEmpty,
        sameSourceAndDestination,
        verificationFailed,
        userCancelled,
    };

    /// Of any case but copyFailed.
    explicit EFICopyError(Case which);

    /// \a reason is the sentence of the error that ended the copy of the files.
    [[nodiscard]] static EFICopyError copyFailed(std::string_view reason);

    [[nodiscard]] Case which() const { return static_cast<Case>(code()); }

private:
    EFICopyError(Case which, std::string description);
};

} // namespace brindle
