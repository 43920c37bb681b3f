#include "platform/linux/Sha256.h"

#include "base/Error.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace brindle {

namespace {

void require(bool worked)
{
    if (!worked)
        throw Error("Sha256", 1, "The cryptographic library of the system can't make a SHA-256 digest.");
}

} // namespace

Sha256::ThreadState::~ThreadState()
{
    OPENSSL_thread_stop();
}

void Sha256::Deleter::operator()(evp_md_ctx_st *context) const
{
    EVP_MD_CTX_free(context);
}

void Sha256::Deleter::operator()(evp_md_st *algorithm) const
{
    EVP_MD_free(algorithm);
}

Sha256::Sha256() : m_algorithm(EVP_MD_fetch(nullptr, "SHA256", nullptr)), m_context(EVP_MD_CTX_new())
{
    require(m_algorithm && m_context);
    begin();
}

void Sha256::add(std::string_view bytes)
{
    require(EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size()) == 1);
}

Sha256::Digest Sha256::finish()
{
    Digest digest{};
    require(EVP_DigestFinal_ex(m_context.get(), digest.data(), nullptr) == 1);
    begin();
    return digest;
}

void Sha256::begin()
{
    require(EVP_DigestInit_ex2(m_context.get(), m_algorithm.get(), nullptr) == 1);
}

} // namespace brindle
