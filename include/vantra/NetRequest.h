/// @file vantra/NetRequest.h
/// One transfer: its settings, its data, its outcome.
///
///     P<CNetRequest> request = new CNetRequest();
///     request->setURL("https://example.org/");
///     request->perform(); // throws CCURLError
///     const TBuffer<unsigned char>& body = *request->getDefaultReceiveBuffer();
#pragma once

#include <curl/curl.h>

#include "vantra/Export.h"
#include "vantra/HeaderAssembler.h"
#include "vantra/NetHeaders.h"
#include "vantra/NetStringList.h"
#include "vantra/ServerInfo.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/Error.h>
#include <kel/Int64.h>
#include <kel/List.h>
#include <kel/Map.h>
#include <kel/MemoryStream.h>
#include <kel/Mutex.h>
#include <kel/P.h>
#include <kel/Path.h>
#include <kel/Signal.h>
#include <kel/Stream.h>
#include <kel/String.h>
#include <kel/Time.h>
#include <kel/XMLElement.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantra {

class CAsyncNetRequestManager;
class CLogCredentials;

/// One transfer on one libcurl easy handle: HTTP(S), FTP(S) or SMTP(S). Settings stay until they are changed
/// or reset(); a request may be performed any number of times and then reuses its connections. What is known
/// of the response (status line, headers, default receive buffer) describes the latest transfer.
///
/// Every failure of libcurl, setting an option included, is thrown as CCURLError. A text with a NUL character
/// in it, which libcurl would cut there, is refused with kel::CInvalidArgError "text contains a NUL
/// character" by every setter that hands texts to libcurl. Pointers given to setters are kept as references
/// until they are replaced or reset(); the objects may be shared. A sink, source or listener may replace
/// itself while it is being called.
///
/// Thread safety: one thread at a time. While a transfer runs on an asynchronous manager, other threads may
/// call isAsyncDone, waitAsyncDone, getAsyncDoneSignal and checkAsyncResult.
class VANTRA_API CNetRequest : public kel::CBase {
public:
    class IDataSink;
    class IDataSource;
    class IDoneListener;
    class CStreamDataSink;
    class CStreamDataSource;
    class CVerboseLogMessage;

    /// How much of a body the transfer log shows. Bit 0 means its content; any value without bit 0, 0
    /// included and VerboseLogDataByMethod excepted, means sizes alone.
    enum VerboseLogData : int {
        VerboseLogDataSize = 2,    ///< the number of bytes
        VerboseLogDataContent = 3, ///< the content too
        /// Decided anew for each transfer: sizes when it sends a body (method "PUT" or setUpload), else
        /// content.
        VerboseLogDataByMethod = 4
    };

    /// @throws kel::CError "Error creating curl easy handle."; what CGlobalInit::get() throws.
    CNetRequest();
    CNetRequest(const CNetRequest&) = delete;
    CNetRequest& operator=(const CNetRequest&) = delete;
    ~CNetRequest() override;

    /// Puts every setting back to what the constructor sets, and forgets the last transfer. What stays: open
    /// connections, user data, dependency objects, and whether and how the transfer is recorded (setVerbose,
    /// setVerboseSettings).
    void reset();

    // Settings

    /// The address (CURLOPT_URL), taken as it is: nothing is escaped. Default: none.
    void setURL(const kel::String& url);
    /// As it was set; redirects do not change it.
    [[nodiscard]] const kel::String& getURL() const noexcept { return url_; }

    /// "GET", "PUT", "POST" and "HEAD", exactly in this spelling, choose libcurl's own handling of the
    /// method; any other text is sent as it is (CURLOPT_CUSTOMREQUEST) with the semantics of a GET. The empty
    /// text takes back every method set before. Default: empty, which libcurl performs as GET.
    void setHTTPMethod(const kel::String& method);
    /// As it was set; empty when it was not.
    [[nodiscard]] const kel::String& getHTTPMethod() const noexcept { return method_; }

    /// Longest time to establish a connection (CURLOPT_CONNECTTIMEOUT_MS), cut to whole milliseconds;
    /// infinite, or anything that is cut to 0, means that vantra sets no limit (libcurl's own of 300 seconds
    /// holds then). Default: 30 seconds.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT for a negative time.
    void setConnectTimeout(const kel::CTimeSpan& timeout);
    /// Longest time for the whole transfer (CURLOPT_TIMEOUT_MS), same conversion and errors. Default: no
    /// limit.
    void setFullRequestTimeout(const kel::CTimeSpan& timeout);
    /// Gives up a transfer that stays below `bytesPerSecond` for `time` (CURLOPT_LOW_SPEED_LIMIT,
    /// CURLOPT_LOW_SPEED_TIME), rounded up to whole seconds; infinite, or 0 for either, switches this off.
    /// Default: 1 byte per second for 60 seconds.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT for a negative number or time.
    void setLowSpeedLimit(int bytesPerSecond, const kel::CTimeSpan& time);

    /// Whether "Location" headers are followed (CURLOPT_FOLLOWLOCATION). Default: true.
    void setFollowRedirects(bool follow);
    /// Whether a POST stays a POST after a 301, 302 or 303 (CURLOPT_POSTREDIR). Default: false.
    void setKeepPostOnRedirect(bool keep);

    /// Whether the server's certificate must be vouched for by a root (CURLOPT_SSL_VERIFYPEER). Default:
    /// true.
    void setSSLVerifyPeer(bool verify);
    /// The file of root certificates in PEM form (CURLOPT_CAINFO), told to libcurl as path.getText(), with
    /// the platform's separators. Default: libcurl's own.
    void setRootCertBundlePath(const kel::TPathImpl<kel::CWindowsPathTraits>& path);

    /// The authentication methods that libcurl may use, CURLAUTH_* bits (CURLOPT_HTTPAUTH). Default: basic.
    void setHTTPAuthMethods(unsigned int methods);
    /// CURLOPT_USERNAME. Default: none.
    void setUserName(const kel::String& name);
    /// CURLOPT_PASSWORD. Default: none.
    void setUserPassword(const kel::String& password);

    /// The proxy, "host:port" or a URL (CURLOPT_PROXY); the empty text means none, proxy variables of the
    /// environment included. Default: libcurl's, which does look at those variables.
    void setProxy(const kel::String& proxy);

    /// Whether the transfer sends the data source's bytes (CURLOPT_UPLOAD); for FTP and SMTP. With HTTP use
    /// the method "PUT". Default: false.
    void setUpload(bool upload);

    /// CURLUSESSL_* level of TLS on an "ftp://" or "smtp://" connection (CURLOPT_USE_SSL). Default: none.
    void setFTPUseSSL(int level);
    /// CURLFTP_CREATE_DIR_* (CURLOPT_FTP_CREATE_MISSING_DIRS). Default: none is created.
    void setFTPCreateMissingDirs(int mode);
    /// CURLFTPMETHOD_* (CURLOPT_FTP_FILEMETHOD). Default: one CWD for each folder.
    void setFTPFileMethod(int method);
    /// The command that lists a directory, in place of LIST (CURLOPT_CUSTOMREQUEST); empty for libcurl's own.
    void setFTPListOverrideCommand(const kel::String& command);
    /// Commands to send before the transfer, after the directory was entered (CURLOPT_PREQUOTE); null for
    /// none. A list that is empty now stays none, even if lines are added to it later.
    void setFTPCustomPreCommands(CNetStringList* commands);
    /// Commands to send after the transfer (CURLOPT_POSTQUOTE), likewise.
    void setFTPCustomPostCommands(CNetStringList* commands);

    /// @{
    /// Any option of libcurl by its number. The value is passed in the type that the option takes; where that
    /// is a `long` of 32 bits, a larger one as the largest.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT for an option that takes no number.
    void setOptionInt(CURLoption option, int value);
    void setOptionInt64(CURLoption option, kel::int64 value);
    /// @}

    /// The pointer is not looked at here; it must stay valid as long as libcurl's documentation demands.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT for an option that takes no pointer.
    void setOptionPtr(CURLoption option, void* value);
    /// Converted to UTF-8; libcurl keeps a copy, of the body in CURLOPT_POSTFIELDS too, whose length becomes
    /// that of the text.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT for an option that takes no text.
    void setOptionString(CURLoption option, const kel::String& value);

    // Data to send

    /// Where the body to send comes from; null for nothing. The source is rewound before each transfer whose
    /// start does not find it at position 0. Sets no size: see setSendDataSize.
    void setSendDataSource(IDataSource* source);
    /// A source over a stream; null for nothing.
    void setSendDataStream(kel::IInStream* stream);
    /// The stream given last, or null when there is none or a source took its place.
    [[nodiscard]] kel::P<kel::IInStream> getSendDataStream() const { return sendDataStream_; }
    /// A source over the caller's bytes, which are read in place, and their number as size. The buffer must
    /// not change while a transfer runs. Null for nothing, with size -1.
    void setSendDataBuffer(const kel::TBuffer<unsigned char>* buffer);
    /// A source over the text's UTF-8 bytes, and their number as size.
    void setSendDataAsUTF8(const kel::String& text);
    /// The number of bytes to send (CURLOPT_INFILESIZE_LARGE, for "POST" CURLOPT_POSTFIELDSIZE_LARGE), or -1
    /// when it is not known: HTTP/1.1 then sends chunks. The source is not read beyond it. Default: -1.
    /// @throws CCURLError with CURLE_BAD_FUNCTION_ARGUMENT below -1; the size before stays then.
    void setSendDataSize(kel::int64 size);

    // Data to receive

    /// Where the body received goes; null to drop it.
    void setReceiveDataSink(IDataSink* sink);
    /// A sink over a stream; null to drop the body.
    void setReceiveDataStream(kel::IOutStream* stream);
    /// Makes the default receive buffer the place where the body goes, as it is at the start.
    void setDefaultReceiveDataStream();
    /// Whether the body goes there.
    [[nodiscard]] bool usesDefaultReceiveBuffer() const noexcept;
    /// The body of the latest transfer, unless a sink took it. The same buffer as long as the request lives;
    /// the next transfer and reset() empty it.
    [[nodiscard]] kel::PC<kel::TBuffer<unsigned char>> getDefaultReceiveBuffer() const {
        return defaultReceiveBuffer_;
    }
    /// Asks for `length` bytes from `offset` on; -1 for all that follow (CURLOPT_RANGE). Both are told as
    /// they are: a length of 0 makes a range that ends before it begins, which servers refuse or answer with
    /// all they have. Default: no range; setOptionPtr(CURLOPT_RANGE, nullptr) takes one back.
    void setRange(kel::int64 offset, kel::int64 length);

    // Headers

    /// Header lines to send in addition to, or in place of, libcurl's own (CURLOPT_HTTPHEADER); null for
    /// none. Lines added to the collection later are part of the next perform.
    void setCustomHTTPHeaders(CNetHeaders* headers);
    /// The collection given last, or null.
    [[nodiscard]] kel::P<CNetHeaders> getCustomHTTPHeaders() const { return customHeaders_; }
    /// A record to update with what each response says of its server; null for none.
    void setServerInfoToUpdate(CServerInfo* info);

    // Performing

    /// Runs the transfer on the calling thread.
    /// @throws the error that a sink, source or listener threw; CCURLError when libcurl reports a failure,
    /// and with CURLE_HTTP_RETURNED_ERROR for an HTTP response outside 200 to 299.
    void perform();

    /// Called once at the end of each transfer; null for none. Not called where perform() throws before the
    /// transfer begins, such as what rewinding the data source throws. After an asynchronous transfer it is
    /// called on the manager's thread, with the error that checkAsyncResult() would throw.
    void setDoneListener(IDoneListener* listener);

    /// Sets the proxy (setProxy) that the user's system settings give for the present URL; none when they
    /// give none. The settings are those of CProxySettings::getUserSettings().
    void setProxyForCurrentURLFromUserSettings();

    // The outcome of an asynchronous transfer (CAsyncNetRequestManager, CAsyncNetRequestThread). Any thread.

    /// Whether the latest asynchronous transfer has finished. False before the first one, while one runs, and
    /// after reset().
    [[nodiscard]] bool isAsyncDone() const;
    /// Waits for the end of the transfer, at most `timeout` milliseconds (negative: without limit); says
    /// whether it has finished.
    bool waitAsyncDone(int timeout) const;
    /// The signal that is set while isAsyncDone(), for those who wait for several requests.
    [[nodiscard]] kel::P<kel::CSignal> getAsyncDoneSignal() const { return asyncDoneSignal_; }
    /// Throws the failure of the finished transfer, each time it is called; returns when it succeeded or has
    /// not finished. What a sink or source threw comes first; otherwise CCURLError as from perform(), with
    /// one difference: the HTTP status only counts for a URL that starts with a lower-case "http".
    void checkAsyncResult() const;

    // The response

    /// "HTTP/1.1 404 Not Found", the last one received; empty before a transfer and for other protocols.
    [[nodiscard]] kel::String getHTTPStatusLine() const { return httpStatusLine_; }
    /// The headers of the last response by lower-cased name. A line that is not UTF-8 is read as ISO-8859-1;
    /// one that is no header is logged as a warning, "Exception during CNetRequest header parsing
    /// (ignored).", and left out. The reference is valid as long as the request; the map changes with the
    /// next response.
    [[nodiscard]] const kel::TMap<kel::String, kel::String>& getResponseHeaderMap() const {
        return headerAssembler_.getHeaderMap();
    }
    /// Every header or reply line of the transfer as it was received, line ends included, and read as the
    /// headers are. The next transfer begins a list of its own; hold a kel::PC to keep this one.
    [[nodiscard]] const CNetStringList& getResponseInfo() const;
    /// The latest response code of any protocol, 0 when there was none (CURLINFO_RESPONSE_CODE). Where an FTP
    /// server refused the transfer over TLS, the refusal's, not that of the farewell behind it.
    [[nodiscard]] int getResponseCode() const;
    /// "http", "ftp" or "smtp" by the scheme of the URL, otherwise empty.
    [[nodiscard]] kel::String getResponseCodeDomain() const;

    /// @{
    /// Any number that libcurl knows about the transfer, an integer cut to 32 bits.
    /// @throws CCURLError if libcurl has none of that kind.
    [[nodiscard]] int getInfoLong(CURLINFO info) const;
    [[nodiscard]] double getInfoDouble(CURLINFO info) const;
    /// @}

    /// Bytes announced by the server, -1 when unknown (CURLINFO_CONTENT_LENGTH_DOWNLOAD).
    [[nodiscard]] double getDownloadSize() const;
    /// Bytes received so far (CURLINFO_SIZE_DOWNLOAD).
    [[nodiscard]] double getDownloadedBytes() const;
    /// Bytes to send, -1 when unknown (CURLINFO_CONTENT_LENGTH_UPLOAD).
    [[nodiscard]] double getUploadSize() const;
    /// Bytes sent so far (CURLINFO_SIZE_UPLOAD).
    [[nodiscard]] double getUploadedBytes() const;
    /// Bytes per second (CURLINFO_SPEED_DOWNLOAD).
    [[nodiscard]] double getAvgDownloadSpeed() const;
    /// Bytes per second (CURLINFO_SPEED_UPLOAD).
    [[nodiscard]] double getAvgUploadSpeed() const;

    // The transfer log

    /// Whether transfers are recorded (CURLOPT_VERBOSE). Default: false.
    void setVerbose(bool on);
    /// As setVerbose() set it.
    [[nodiscard]] bool isVerboseEnabled() const noexcept { return verbose_; }
    /// How bodies and TLS records appear in the log. Default: VerboseLogDataByMethod and VerboseLogDataSize.
    void setVerboseSettings(VerboseLogData data, VerboseLogData sslData);
    /// The record of the latest transfer, null when transfers are not recorded. Element "NetRequest" with
    /// "httpMethod" and "url", and a child for each message of libcurl with its "logTime" (UTC): "info",
    /// "send" or "receive", the latter two with "type" "header", "data" or "ssl_data" and for data their size
    /// as "bytes"; a message of a kind not known here is "unknown", with its size, and shown like data. Bytes
    /// are read as ISO-8859-1, and those of data percent-encoded. Each message is shown up to `maxDataLength`
    /// bytes, with "..." where something was left out and "~stripped~" for a content that is not shown. To be
    /// called when no transfer runs.
    ///
    /// Credentials sent are shown as "~stripped~": the values of "Authorization" and "Proxy-Authorization"
    /// headers, what follows PASS and ACCT of FTP, and what follows AUTH of SMTP up to the server's verdict.
    /// Bodies and addresses are not searched: a name and password belong into setUserName and
    /// setUserPassword and not into the URL, which is shown as it is.
    [[nodiscard]] kel::P<kel::CXMLElement> getVerboseOutput(unsigned int maxDataLength) const;
    /// libcurl's CURLOPT_DEBUGFUNCTION; `request` is the CNetRequest, null for nothing. Always 0: a message
    /// that cannot be recorded is logged as a warning, and the transfer goes on.
    static int _curlDebugFunctionCallback(CURL* handle, curl_infotype type, char* data, std::size_t size,
                                          void* request);

    // Belongings

    /// libcurl's handle, still owned by the request.
    [[nodiscard]] CURL* getHandle() const noexcept { return handle_.get(); }
    /// A value for the caller's own use; never looked at. Default: null.
    void setUserData(void* data) noexcept { userData_ = data; }
    /// The value set last; null when none was.
    [[nodiscard]] void* getUserData() const noexcept { return userData_; }
    /// Keeps an object alive as long as the request.
    void addDependencyObject(const kel::P<kel::IBase>& object);

    /// Percent-encodes the text's UTF-8 bytes as libcurl does (`curl_easy_escape`): all but letters, digits,
    /// "-", ".", "_" and "~", NUL characters included, with upper-case hexadecimal digits. The free function
    /// of that name writes lower-case ones.
    /// @throws kel::CError "Error URL-escaping a string."
    [[nodiscard]] kel::String urlEscape(const kel::String& text) const;

    /// A message from an error body: at most its first 4096 bytes, without a character that this cuts, as
    /// text; HTML (a header "content-type" that starts with "text/html", or an "<html" in it, both in lower
    /// case) without its tags and with blanks and line breaks folded. Empty if it is not valid UTF-8. Never
    /// throws.
    /// @param headers by lower-cased name.
    static kel::String
    getServerErrorMessageFromResponseData(const unsigned char* data, int size,
                                          const kel::TMap<kel::String, kel::String>& headers);

protected:
    /// Marks an asynchronous transfer as started (`done` false) or as finished with libcurl's result.
    /// @throws on the start, what rewinding the data source throws; never at the end.
    void setAsyncInfo(bool done, CURLcode result);

    /// Records a message of libcurl if it is this request's and recording is on.
    void onLogDebugMessage(void* handle, curl_infotype type, char* data, std::size_t size);
    /// The log's element for one message, seen alone: it does not know whether an SMTP login is under way,
    /// whose answers are no commands, and shows those.
    [[nodiscard]] kel::P<kel::CXMLElement> createVerboseXmlElement(const CVerboseLogMessage& message,
                                                                   unsigned int maxDataLength) const;

private:
    friend class CAsyncNetRequestManager;
    struct CallbackTrampolines;
    struct HandleDeleter {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    };

    // Settings
    template <class Value>
    void setOption(CURLoption option, Value value);
    void setText(CURLoption option, const kel::String& value);
    void setTimeoutOption(CURLoption option, const kel::CTimeSpan& timeout);
    void setDefaultOptions();

    // Performing
    void performTransfer();
    void finishAsync(CURLcode result) noexcept;
    void settleAsyncResult(CURLcode result);
    [[nodiscard]] kel::P<kel::CError> getAsyncFailure() const noexcept;
    void throwAsyncFailure() const;
    void resetForPerform();
    void settleVerboseData();
    [[nodiscard]] kel::P<kel::CXMLElement> renderLogMessage(const CVerboseLogMessage& message,
                                                            unsigned int maxDataLength,
                                                            CLogCredentials& credentials) const;
    void notifyDoneListener(const kel::CError* error);
    void clearErrorBuffer() noexcept { errorBuffer_[0] = 0; }
    [[nodiscard]] kel::String getErrorMessage() const;
    [[nodiscard]] kel::String getServerMessage(const kel::String& responseCodeDomain, int responseCode) const;
    [[noreturn]] void throwError(CURLcode code, const kel::String& responseCodeDomain, int responseCode,
                                 const kel::String& message) const;

    // Called by libcurl through the trampolines; the handlers do not throw
    std::size_t writeHandler(const char* data, std::size_t size, std::size_t nmemb) noexcept;
    std::size_t readHandler(char* buffer, std::size_t size, std::size_t nmemb) noexcept;
    [[nodiscard]] std::size_t limitToSendData(std::size_t length) const noexcept;
    std::size_t readSendData(char* buffer, std::size_t length);
    int seekHandler(kel::int64 offset, int origin) noexcept;
    std::size_t headerHandler(const char* line, std::size_t length) noexcept;
    void handleHeaderLine(std::string_view line);
    void watchFTPReply(std::string_view line);
    void letConnectionBeReused();
    void addResponseLine(std::string_view utf8);
    void clearResponseLines();
    void settleStatusCode();
    void storePendingError() noexcept;

    std::unique_ptr<CURL, HandleDeleter> handle_;
    kel::P<kel::TBuffer<unsigned char>> defaultReceiveBuffer_;
    kel::P<kel::CBufferOutStream> defaultReceiveStream_;
    kel::P<IDataSink> defaultReceiveSink_;
    kel::P<IDataSink> receiveSink_;
    bool sinkReadsHeaders_ = false; // not so the sinks that the request itself puts before streams
    kel::P<IDataSource> sendDataSource_;
    kel::P<kel::IInStream> sendDataStream_;
    kel::int64 sendDataSize_ = -1;
    kel::int64 sendDataPosition_ = 0; // up to where the source has been read in the present transfer
    char errorBuffer_[CURL_ERROR_SIZE] = {};
    bool verbose_ = false;
    VerboseLogData verboseData_ = VerboseLogDataByMethod;
    VerboseLogData verboseDataInEffect_ = VerboseLogDataContent; // verboseData_ as settled for the transfer
    VerboseLogData verboseSSLData_ = VerboseLogDataSize;
    kel::TList<CVerboseLogMessage> verboseMessages_;
    kel::String url_;
    kel::P<CNetHeaders> customHeaders_;
    kel::String method_;
    bool upload_ = false; // whether the method is "PUT" or setUpload() asked for one
    CHeaderAssembler headerAssembler_;
    kel::String headerLine_; // the line being handled; a member so that its memory serves the next line too
    kel::String httpStatusLine_;
    int httpStatusCode_ = -1;
    kel::P<CNetStringList> ftpPreCommands_;
    kel::P<CNetStringList> ftpPostCommands_;
    bool forbidsReuse_ = false;         // as the caller set CURLOPT_FORBID_REUSE
    bool hasFTPDataConnection_ = false; // whether the server has offered one in the present transfer
    int ftpRefusalCode_ = 0;            // the reply for which the transfer's connection is not to be reused
    std::string responseLines_;         // every line received, in UTF-8, one behind the other
    std::vector<std::size_t> responseLineEnds_;   // where each of them ends
    mutable kel::P<CNetStringList> responseInfo_; // as many of the lines as somebody has asked for
    mutable std::size_t responseInfoCount_ = 0;
    bool isHTTP_ = false;
    mutable kel::CMutex asyncMutex_; // guards the three members below
    kel::P<kel::CSignal> asyncDoneSignal_;
    CURLcode asyncResult_ = CURLE_OK;
    kel::String asyncErrorMessage_;
    kel::P<IDoneListener> doneListener_;
    kel::P<kel::CError> pendingError_; // thrown inside a callback, to be thrown once libcurl has returned
    void* userData_ = nullptr;
    kel::TArray<kel::P<kel::IBase>> dependencies_;
};

/// One message that libcurl reported about a transfer.
class VANTRA_API CNetRequest::CVerboseLogMessage : public kel::CBase {
public:
    /// Copies the bytes and takes the present time.
    CVerboseLogMessage(curl_infotype messageType, const char* messageData, std::size_t messageSize)
        : type(messageType),
          data(reinterpret_cast<const unsigned char*>(messageData), messageSize),
          size(messageSize),
          time(kel::CTime::now()) {}
    CVerboseLogMessage(const CVerboseLogMessage&) = default;
    CVerboseLogMessage(CVerboseLogMessage&&) = default;
    CVerboseLogMessage& operator=(const CVerboseLogMessage&) = default;
    CVerboseLogMessage& operator=(CVerboseLogMessage&&) = default;
    ~CVerboseLogMessage() override;

    curl_infotype type;               ///< what libcurl calls the kind of message
    kel::TBuffer<unsigned char> data; ///< the bytes, as libcurl reported them
    kel::uint64 size;                 ///< how many they are
    kel::CTime time;                  ///< of its arrival
};

/// Takes the body of a response, block by block, on the thread that drives the transfer. What it throws
/// aborts the transfer and is thrown by perform().
class VANTRA_API CNetRequest::IDataSink : public virtual kel::IBase {
public:
    /// @param length bytes at `data`, which is valid during the call only.
    /// @param httpStatusCode of the response; -1 when the transfer is not HTTP, 0 when its status line could
    /// not be read.
    /// @param responseHeaders received so far, by lower-cased name.
    virtual void write(const void* data, unsigned int length, int httpStatusCode,
                       const kel::TMap<kel::String, kel::String>& responseHeaders) = 0;
};

/// Gives the body of a request, block by block, on the thread that drives the transfer. What it throws aborts
/// the transfer and is thrown by perform().
class VANTRA_API CNetRequest::IDataSource : public virtual kel::IBase {
public:
    /// Fills up to `maxLength` bytes at `buffer` and returns how many; 0 at the end.
    virtual unsigned int read(void* buffer, unsigned int maxLength,
                              const kel::TMap<kel::String, kel::String>& responseHeaders) = 0;
    /// The whole size in bytes, or -1 when it is not known.
    virtual kel::int64 getSize() = 0;
    /// Moves to `position` bytes from the start. Called when the body has to be sent again.
    virtual void seek(kel::int64 position) = 0;
    /// Bytes from the start to what read() gives next.
    virtual kel::int64 getPosition() = 0;
};

/// Learns of the end of transfers.
class VANTRA_API CNetRequest::IDoneListener : public virtual kel::IBase {
public:
    /// Called on the thread that drove the transfer. What it throws leaves perform(), in place of the
    /// transfer's own error; after an asynchronous transfer it is logged as an error, "Exception in a done
    /// listener (ignored).".
    /// @param error null on success; valid during the call only.
    virtual void onRequestDone(CNetRequest* request, const kel::CError* error) = 0;
};

/// Writes the body to a stream, whatever the response's status.
class VANTRA_API CNetRequest::CStreamDataSink : public kel::CBase, public IDataSink {
public:
    /// Keeps a reference to the stream. @throws kel::CInvalidArgError "stream must not be null"
    explicit CStreamDataSink(kel::IOutStream* stream);
    CStreamDataSink(const CStreamDataSink&) = delete;
    CStreamDataSink& operator=(const CStreamDataSink&) = delete;
    ~CStreamDataSink() override;

    void write(const void* data, unsigned int length, int httpStatusCode,
               const kel::TMap<kel::String, kel::String>& responseHeaders) override;

private:
    kel::P<kel::IOutStream> stream_;
};

/// Reads the body from a stream; size, seek and position are the stream's own.
class VANTRA_API CNetRequest::CStreamDataSource : public kel::CBase, public IDataSource {
public:
    /// Keeps a reference to the stream. @throws kel::CInvalidArgError "stream must not be null"
    explicit CStreamDataSource(kel::IInStream* stream);
    CStreamDataSource(const CStreamDataSource&) = delete;
    CStreamDataSource& operator=(const CStreamDataSource&) = delete;
    ~CStreamDataSource() override;

    unsigned int read(void* buffer, unsigned int maxLength,
                      const kel::TMap<kel::String, kel::String>& responseHeaders) override;
    kel::int64 getSize() override;
    void seek(kel::int64 position) override;
    kel::int64 getPosition() override;

private:
    kel::P<kel::IInStream> stream_;
};

} // namespace vantra
