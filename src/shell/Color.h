#pragma once

#include <string_view>

namespace brindle {

/// A colour of the interface: the name of one that the theme paints for the light and for the dark scheme, or a fixed
/// one in sRGB as "#RRGGBB".
struct Color {
    std::string_view value;

    constexpr bool operator==(const Color &) const = default;
};

namespace Colors {

inline constexpr Color kPrimary{"primary"};
inline constexpr Color kSecondary{"secondary"};
inline constexpr Color kSeparator{"separator"};
inline constexpr Color kWhite{"white"};
inline constexpr Color kBlack{"black"};
inline constexpr Color kGray{"gray"};
inline constexpr Color kBlue{"blue"};
inline constexpr Color kPurple{"purple"};
inline constexpr Color kGreen{"green"};
inline constexpr Color kOrange{"orange"};
inline constexpr Color kRed{"red"};

// What stands for one thing everywhere has the same colour in every theme.
inline constexpr Color kOpenCore{"#00CCFF"};
inline constexpr Color kClover{"#00CC00"};
inline constexpr Color kLinuxEFI{"#9900CC"};

} // namespace Colors

} // namespace brindle
