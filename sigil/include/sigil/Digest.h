/// @file sigil/Digest.h
/// Message digests.
///
///     CDigestType_MD5 md5;
///     md5.update("abc", 3);
///     md5.finish();
///     md5.getDigest(); // 16 bytes
#pragma once

#include <kel/Base.h>
#include <kel/Buffer.h>

#include <cstddef>
#include <memory>

namespace sigil {

/// One digest computation after another. One thread at a time.
class IDigestType : public virtual kel::IBase {
public:
    /// Starts anew; also how an object starts out.
    virtual void reset() = 0;
    /// Feeds bytes. @throws kel::CError after finish() and before the next reset().
    virtual void update(const void* data, std::size_t size) = 0;
    /// Ends the computation. @throws kel::CError if it has ended already.
    virtual void finish() = 0;
    /// The digest; its content is valid from finish() to the next reset().
    [[nodiscard]] virtual const kel::TBuffer<unsigned char>& getDigest() const = 0;
};

/// MD5 (RFC 1321), 16 bytes. For checksums that a protocol asks for, not for security.
class CDigestType_MD5 : public kel::CBase, public IDigestType {
public:
    /// @throws kel::CError if OpenSSL offers no MD5.
    CDigestType_MD5();
    CDigestType_MD5(const CDigestType_MD5&) = delete;
    CDigestType_MD5& operator=(const CDigestType_MD5&) = delete;
    ~CDigestType_MD5() override;

    void reset() override;
    void update(const void* data, std::size_t size) override;
    void finish() override;
    [[nodiscard]] const kel::TBuffer<unsigned char>& getDigest() const override { return digest_; }

private:
    struct Context;
    std::unique_ptr<Context> context_;
    kel::TBuffer<unsigned char> digest_;
    bool finished_ = false;
};

} // namespace sigil
