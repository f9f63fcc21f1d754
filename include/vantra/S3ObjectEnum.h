/// @file vantra/S3ObjectEnum.h
/// All objects under a prefix, one by one.
///
///     CS3ObjectEnum objects(client, request, "bucket", "photos/", "", 1000);
///     while (objects.next()) use(objects.getCurrObject()->getKey());
#pragma once

#include "vantra/Export.h"
#include "vantra/NetRequest.h"
#include "vantra/S3Client.h"
#include "vantra/S3Results.h"

#include <kel/Base.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra {

/// Walks the objects of a bucket in the order of their keys, and fetches page after page on the way.
///
/// Thread safety: one thread at a time; client and request must not do anything else meanwhile. A copy goes
/// on from the same place, with the same client and request.
class VANTRA_API CS3ObjectEnum : public kel::CBase {
public:
    /// Fetches nothing yet. References to client and request are kept.
    /// @param prefix of the keys; empty for all.
    /// @param startMarker the keys come after it; empty for all.
    /// @param pageSize the most objects to ask for at a time; -1 for as many as the service gives.
    /// @throws kel::CInvalidArgError "client must not be null", "request must not be null"
    CS3ObjectEnum(CS3Client* client, CNetRequest* request, const kel::String& bucket,
                  const kel::String& prefix, const kel::String& startMarker, int pageSize);
    CS3ObjectEnum(const CS3ObjectEnum&);
    CS3ObjectEnum(CS3ObjectEnum&&) noexcept;
    CS3ObjectEnum& operator=(const CS3ObjectEnum&);
    CS3ObjectEnum& operator=(CS3ObjectEnum&&) noexcept;
    ~CS3ObjectEnum() override;

    /// Goes to the first object, then to each next one; false at the end, and from then on.
    /// @throws as CS3Client::listObjects; a later call asks for the same page again.
    bool next();

    /// The object that next() went to. Only to be called when that was true; null before the first next().
    [[nodiscard]] kel::P<CS3ListObjectsElement> getCurrObject() const;

protected:
    /// Fetches the page behind the last key of the current one, or the first page, without a delimiter, and
    /// goes to its first object; false, and the end, when there is none. @throws as next().
    bool nextPage();

private:
    kel::P<CS3Client> client_;
    kel::P<CNetRequest> request_;
    kel::String bucket_;
    kel::String prefix_;
    int pageSize_;
    kel::P<CS3ListObjectsResult> page_; // null before the first one
    int index_ = 0;
    kel::String marker_; // of the page to fetch next
    bool finished_ = false;
};

} // namespace vantra
