#include "efi/EFICopyError.h"

#include <fmt/format.h>

#include <string>
#include <utility>

namespace brindle {

namespace {

std::string_view descriptionOf(EFICopyError::Case which)
{
    using enum EFICopyError::Case;
    switch (which) {
    case efiNotMounted:
        return "EFI partition is not mounted";
    case sourceEFINotFound:
        return "Source EFI folder not found";
    case sourceEFIEmpty:
        return "Source EFI folder is empty - nothing to copy";
    case sameSourceAndDestination:
        return "Source and destination cannot be the same";
    case verificationFailed:
        return "Failed to verify copied files";
    case userCancelled:
        return "Operation cancelled by user";
    case copyFailed:
        break;
    }
    return "Copy operation failed: ";
}

} // namespace

EFICopyError::EFICopyError(Case which) : EFICopyError(which, std::string(descriptionOf(which))) {}

EFICopyError EFICopyError::copyFailed(std::string_view reason)
{
    return {Case::copyFailed, fmt::format("{}{}", descriptionOf(Case::copyFailed), reason)};
}

EFICopyError::EFICopyError(Case which, std::string description)
    : Error("EFICopyError", static_cast<int>(which), std::move(description))
{
}

} // namespace brindle
