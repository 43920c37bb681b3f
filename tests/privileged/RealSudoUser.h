#pragma once

namespace brindle {

/// The password of the users that real-sudo-test makes, which stands nowhere by chance.
inline constexpr const char *kSudoPassword = "sEsame 4 Zaffr3 lynX";

} // namespace brindle
