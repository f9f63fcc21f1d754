#include "vantra/NetRequest.h"

#include "request/CallbackTrampolines.h"
#include "request/OptionSetter.h"
#include "vantra/GlobalInit.h"

namespace vantra {

using kel::CError;
using kel::CTimeSpan;
using kel::IBase;
using kel::P;

CNetRequest::CNetRequest()
    : defaultReceiveBuffer_(new kel::TBuffer<unsigned char>()),
      defaultReceiveStream_(new kel::CBufferOutStream(defaultReceiveBuffer_)),
      defaultReceiveSink_(new CStreamDataSink(defaultReceiveStream_)),
      receiveSink_(defaultReceiveSink_),
      responseInfo_(new CNetStringList()),
      asyncDoneSignal_(new kel::CSignal()) {
    CGlobalInit::get();
    handle_.reset(curl_easy_init());
    if (!handle_) throw CError("Error creating curl easy handle.");
    setDefaultOptions();
}

CNetRequest::~CNetRequest() {
    // Closing its connections, libcurl may still report to this object: before any other member goes.
    handle_.reset();
}

void CNetRequest::reset() {
    sendDataStream_ = nullptr;
    sendDataSource_ = nullptr;
    doneListener_ = nullptr;
    setDefaultReceiveDataStream();
    setServerInfoToUpdate(nullptr);
    setAsyncInfo(false, CURLE_OK);
    url_.clear();
    isHTTP_ = false;
    clearErrorBuffer();
    curl_easy_reset(handle_.get());
    method_.clear();
    upload_ = false;
    sendDataSize_ = -1;
    customHeaders_ = nullptr;
    ftpPreCommands_ = nullptr;
    ftpPostCommands_ = nullptr;
    forbidsReuse_ = false;
    verboseMessages_.clear();
    resetForPerform();
    setDefaultOptions();
    if (verbose_) setVerbose(true);
}

void CNetRequest::setDefaultOptions() {
    setOption(CURLOPT_ERRORBUFFER, errorBuffer_);
    setOption(CURLOPT_WRITEFUNCTION, &CallbackTrampolines::write);
    setOption(CURLOPT_WRITEDATA, this);
    setOption(CURLOPT_READFUNCTION, &CallbackTrampolines::read);
    setOption(CURLOPT_READDATA, this);
    setOption(CURLOPT_SEEKFUNCTION, &CallbackTrampolines::seek);
    setOption(CURLOPT_SEEKDATA, this);
    setOption(CURLOPT_HEADERFUNCTION, &CallbackTrampolines::header);
    setOption(CURLOPT_HEADERDATA, this);
    setOption(CURLOPT_FOLLOWLOCATION, 1L);
    setOption(CURLOPT_NOSIGNAL, 1L);
    setConnectTimeout(CTimeSpan::fromSeconds(30));
    setOption(CURLOPT_LOW_SPEED_LIMIT, 1L);
    setOption(CURLOPT_LOW_SPEED_TIME, 60L);
    setOption(CURLOPT_DEBUGFUNCTION, &CNetRequest::_curlDebugFunctionCallback);
    setOption(CURLOPT_DEBUGDATA, this);
}

void CNetRequest::addDependencyObject(const P<IBase>& object) { dependencies_.push_back(object); }

} // namespace vantra
