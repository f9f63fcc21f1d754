#include "sigil/Digest.h"

#include "sigil/OpenSSLInit.h"

#include <kel/Error.h>

#include <openssl/evp.h>

namespace sigil {

namespace {

struct FreeDigestMethod {
    void operator()(EVP_MD* method) const noexcept { EVP_MD_free(method); }
};

struct FreeDigestContext {
    void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
};

void check(bool succeeded) {
    if (!succeeded) throw kel::CError("OpenSSL failed to compute an MD5 digest.");
}

} // namespace

struct CDigestType_MD5::Context {
    std::unique_ptr<EVP_MD, FreeDigestMethod> method{EVP_MD_fetch(nullptr, "MD5", nullptr)};
    std::unique_ptr<EVP_MD_CTX, FreeDigestContext> state{EVP_MD_CTX_new()};
};

CDigestType_MD5::CDigestType_MD5() {
    COpenSSLInit::ensureInitialized();
    context_ = std::make_unique<Context>();
    if (!context_->method) throw kel::CError("OpenSSL offers no MD5.");
    check(context_->state != nullptr);
    reset();
}

CDigestType_MD5::~CDigestType_MD5() = default;

void CDigestType_MD5::reset() {
    check(EVP_DigestInit_ex2(context_->state.get(), context_->method.get(), nullptr) == 1);
    digest_.clear();
    finished_ = false;
}

void CDigestType_MD5::update(const void* data, std::size_t size) {
    if (finished_) throw kel::CError("The digest is finished.");
    check(EVP_DigestUpdate(context_->state.get(), data, size) == 1);
}

void CDigestType_MD5::finish() {
    if (finished_) throw kel::CError("The digest is finished.");
    digest_.setUsed(static_cast<std::size_t>(EVP_MD_get_size(context_->method.get())));
    check(EVP_DigestFinal_ex(context_->state.get(), digest_.getData(), nullptr) == 1);
    finished_ = true;
}

} // namespace sigil
