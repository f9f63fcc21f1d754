/// @file vantra/GlobalInit.h
/// One-time start of the process-wide transfer machinery, and the root certificate bundle.
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/P.h>
#include <kel/Path.h>
#include <kel/SafeGlobal.h>

namespace vantra {

/// The process-wide object whose construction starts OpenSSL and then libcurl (`curl_global_init` with
/// CURL_GLOBAL_ALL). The constructors of CNetRequest, CNetHeaders and CAsyncNetRequestManager see to it, so a
/// program needs it only to start early. Nothing is torn down: `curl_global_cleanup` is never called.
///
/// Thread safety: any thread may call any static member, several at once.
class VANTRA_API CGlobalInit : public kel::CBase {
public:
    /// The one instance, constructed by the first call.
    /// @throws kel::CError "curl global init failed" from the call during which libcurl could not be started;
    /// "Construction of static object has failed." from every call after that one.
    static const kel::P<CGlobalInit>& get();

    /// get() without its result.
    static void ensureInitialized();

    CGlobalInit(const CGlobalInit&) = delete;
    CGlobalInit& operator=(const CGlobalInit&) = delete;
    ~CGlobalInit() override;

protected:
    CGlobalInit();

    /// Decides which caller constructs the instance.
    static kel::CSafeGlobalGuard& globalInstanceGuard();
    /// Run by the base library at the end of the process, before the instance is let go of.
    static void disposeGlobalInstance();
    /// Does nothing: libcurl's global state lives as long as the process.
    void dispose();

private:
    struct Holder;
};

/// The full path of the root certificate bundle that the application ships: the file "ca-bundle.crt" in the
/// folder "vantra" of its resources (see kel::CResourceManager). Made for CNetRequest::setRootCertBundlePath;
/// nothing in the library calls it.
/// @throws kel::CError "INTERNAL ERROR: Root certificate bundle not found in application resources."
VANTRA_API kel::TPathImpl<kel::CWindowsPathTraits> getRootCertBundlePath();

} // namespace vantra
