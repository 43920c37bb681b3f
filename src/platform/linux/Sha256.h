#pragma once

#include <array>
#include <memory>
#include <string_view>

// Of OpenSSL, whose headers stay out of ours.
struct evp_md_ctx_st;
struct evp_md_st;

namespace brindle {

/// Makes SHA-256 digests (FIPS 180-4), one after the other, in the thread that has made it.
class Sha256 {
public:
    using Digest = std::array<unsigned char, 32>;

    Sha256(); ///< Throws an Error where the library has no such digest.

    void add(std::string_view bytes);

    /// The digest of all that was added since the last one.
    [[nodiscard]] Digest finish();

private:
    /// Gives back what the library keeps for the thread: at the end of the process it can be too late.
    struct ThreadState {
        ~ThreadState();
    };

    struct Deleter {
        void operator()(evp_md_ctx_st *context) const;
        void operator()(evp_md_st *algorithm) const;
    };

    void begin();

    ThreadState m_threadState;                       ///< The last to go.
    std::unique_ptr<evp_md_st, Deleter> m_algorithm; ///< Looked up once: that costs as much as a small file.
    std::unique_ptr<evp_md_ctx_st, Deleter> m_context;
};

} // namespace brindle
