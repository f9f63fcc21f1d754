/// @file ObjectArgument.h
/// A bucket, or an object in it, as the user names it.
#pragma once

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// "s3://BUCKET" or "s3://BUCKET/KEY". Both are taken as they are: nothing in them is escaped, and whatever
/// follows the "/" behind the bucket is the key.
class CObjectArgument {
public:
    enum class Key {
        Needed,  ///< it names an object
        Optional ///< it names a bucket, and perhaps where in it
    };

    /// @param name of the argument, for the error's text.
    /// @throws CUsageError for anything else.
    CObjectArgument(const std::string& name, const std::string& argument, Key key);

    [[nodiscard]] const kel::String& getText() const noexcept { return text_; }
    [[nodiscard]] const kel::String& getBucket() const noexcept { return bucket_; }
    /// Empty when none was given.
    [[nodiscard]] const kel::String& getKey() const noexcept { return key_; }

private:
    kel::String text_;
    kel::String bucket_;
    kel::String key_;
};

} // namespace vantra::tool
