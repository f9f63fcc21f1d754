/// @file vantra/SMTPClient.h
/// Sending mail through a submission server.
///
///     P<CSMTPClient> client = new CSMTPClient(
///         CSMTPParams("mail.example.org", 587, CSMTPParams::ConnectTypeStartTLS, "jane", password));
///     client->sendMail("jane@example.org", {"joe@example.org"}, *storedMessage);
#pragma once

#include "vantra/Export.h"
#include "vantra/NetRequest.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/P.h>
#include <kel/Stream.h>
#include <kel/String.h>
#include <kel/Time.h>

namespace vantra {

/// How to reach a mail server and log in to it.
///
/// Thread safety: as for a plain record: one thread at a time, or any number of readers.
class VANTRA_API CSMTPParams : public kel::CBase {
public:
    /// How the connection is protected.
    enum ConnectType : int {
        ConnectTypeUnencrypted = 0, ///< "unencrypted": no TLS, usually port 25 or 587
        ConnectTypeSSL = 1,         ///< "ssl": TLS from the start, usually port 465
        ConnectTypeStartTLS = 2     ///< "starttls": TLS by the command STARTTLS, required; usually port 587
    };

    /// No host, port 0, unencrypted, no login.
    CSMTPParams() = default;
    /// @param host a name or an address, an IPv6 address in brackets.
    /// @param loginName empty for no login; the password does not count then.
    CSMTPParams(const kel::String& host, int port, ConnectType type, const kel::String& loginName,
                const kel::String& loginPassword);
    CSMTPParams(const CSMTPParams&) = default;
    CSMTPParams(CSMTPParams&&) = default;
    CSMTPParams& operator=(const CSMTPParams&) = default;
    CSMTPParams& operator=(CSMTPParams&&) = default;
    ~CSMTPParams() override;

    /// @{
    /// What the constructor was given.
    [[nodiscard]] kel::String getHost() const { return host_; }
    [[nodiscard]] int getPort() const noexcept { return port_; }
    [[nodiscard]] ConnectType getConnectType() const noexcept { return connectType_; }
    [[nodiscard]] kel::String getLoginName() const { return loginName_; }
    [[nodiscard]] kel::String getLoginPassword() const { return loginPassword_; }
    /// @}

    /// "unencrypted", "ssl" or "starttls". @throws kel::CInvalidArgError "invalid connect type: 3" for any
    /// other value.
    [[nodiscard]] static kel::String connectTypeToString(ConnectType type);
    /// The type of one of these texts, in this spelling. @throws kel::CInvalidArgError "invalid connect type:
    /// TEXT" for any other.
    [[nodiscard]] static ConnectType connectTypeToInt(const kel::String& text);

private:
    kel::String host_;
    int port_ = 0;
    ConnectType connectType_ = ConnectTypeUnencrypted;
    kel::String loginName_;
    kel::String loginPassword_;
};

/// Sends mail, one after the other, on a request of its own, which keeps the connection between mails where
/// the server allows it. What fails is thrown as CCURLError, where the server refused with its reply code
/// (response code domain "smtp") and, as server message, the line by which it did; the client is ready for
/// the next mail then. The request has the settings of a new CNetRequest: 30 seconds to connect, and the end
/// of a transfer that stands still for 60.
///
/// Nobody needs to vouch for the server's certificate (CURLOPT_SSL_VERIFYPEER is off), so that servers with
/// self-signed ones can be used; it still must name the host. TLS then keeps out those who listen, not those
/// who pose as the server.
///
/// Addresses are passed on unchanged, without angle brackets, which libcurl adds; whether one is an address
/// is not looked at (isValidEmailAddress), and a line break in one is the caller's concern.
///
/// Thread safety: one thread at a time; the static members from any thread.
class VANTRA_API CSMTPClient : public kel::CBase {
public:
    /// Keeps a copy of the parameters. Nothing is sent.
    /// @throws kel::CInvalidArgError "text contains a NUL character" if the host or the login does; what
    /// CNetRequest's constructor throws.
    explicit CSMTPClient(const CSMTPParams& params);
    CSMTPClient(const CSMTPClient&) = delete;
    CSMTPClient& operator=(const CSMTPClient&) = delete;
    ~CSMTPClient() override;

    /// Sends a message to all recipients; the call returns when the server has accepted it. A server that
    /// refuses any of them gets nothing sent.
    /// @param from the sender on the envelope (CURLOPT_MAIL_FROM); empty for the null sender.
    /// @param recipients on the envelope (CURLOPT_MAIL_RCPT), in this order. The list of each mail is kept
    /// until the client goes.
    /// @param message the stored text, header block included (CMimeMessage::store), with CR LF as line ends.
    /// It is read in place. A last line without CR LF gets one.
    /// @throws kel::CInvalidArgError "sender contains a NUL character", "no recipients given" and "recipient
    /// contains a NUL character", before anything is sent; CCURLError.
    void sendMail(const kel::String& from, const kel::TArray<kel::String>& recipients,
                  const kel::TBuffer<unsigned char>& message);

    /// Connects, greets and logs in without sending mail (CURLOPT_CONNECT_ONLY). The connection is closed
    /// with the next call or the client. @throws CCURLError
    void testConnection();

    /// Makes any request one that sends a mail, for the asynchronous thread: it is reset, set up as the
    /// client sets up its own, and then the caller's to perform, once or more often. The list of recipients
    /// is kept until the request goes.
    /// @param data the stored message, read from its start; a reference is kept.
    /// @throws kel::CInvalidArgError as sendMail, and "data must not be null", with the request as it was; as
    /// the constructor for the parameters, with the request reset.
    static void makeSendMailRequest(CNetRequest& request, const CSMTPParams& params, const kel::String& from,
                                    const kel::TArray<kel::String>& recipients, kel::IInStream* data);

    /// The value of a "Date" field (RFC 5322 §3.3): "Mon, 1 Apr 2019 09:05:07 +0000". The day of the week is
    /// that of the date. @throws kel::CError "Invalid month: 13." for a month outside 1 to 12.
    [[nodiscard]] static kel::String getDateHeaderString(const kel::CTimeFields& time);

protected:
    /// Resets the request and sets URL, login and TLS.
    static void doInitialRequestInit(CNetRequest& request, const CSMTPParams& params);
    /// Sets what is particular to one mail.
    static void initRequestForSendMail(CNetRequest& request, const kel::String& from,
                                       const kel::TArray<kel::String>& recipients, kel::IInStream* data);
    /// Brings the request back to a state in which it sends nothing.
    static void resetOptions(CNetRequest& request);
    /// Performs the client's request and resets its options, whether it succeeded or not.
    void doPerform();

private:
    CSMTPParams params_;
    kel::P<CNetRequest> request_;
};

} // namespace vantra
