/// @file JSONObject.h
/// A result for programs to read.
///
///     CJSONObject object;
///     object.setText("key", "a/b");
///     object.setInteger("size", 12);
///     output.write(object.toLine()); // {"key":"a/b","size":12}
#pragma once

#include <kel/Array.h>
#include <kel/Int64.h>
#include <kel/String.h>

#include <memory>
#include <string>

namespace vantra::tool {

/// A JSON object (RFC 8259 §4). Members come in the order in which they were first set; setting one again
/// replaces its value.
///
/// Thread safety: one thread at a time.
class CJSONObject {
public:
    CJSONObject();
    CJSONObject(const CJSONObject&) = delete;
    CJSONObject& operator=(const CJSONObject&) = delete;
    ~CJSONObject();

    void setText(const char* name, const kel::String& value);
    void setInteger(const char* name, kel::int64 value);
    void setReal(const char* name, double value);
    void setBoolean(const char* name, bool value);
    void setNull(const char* name);
    void setTexts(const char* name, const kel::TArray<kel::String>& values);
    void setObject(const char* name, const CJSONObject& value);

    [[nodiscard]] bool isEmpty() const;
    void clear();

    /// The object in UTF-8 without a line break in it, and a line end. What is no character (half of a
    /// surrogate pair) becomes U+FFFD.
    /// @param isForTerminal whether to escape all that is not printable ASCII, so that nothing in it moves
    /// the cursor or turns the direction of writing.
    [[nodiscard]] std::string toLine(bool isForTerminal = false) const;

private:
    struct Members;
    std::unique_ptr<Members> members_;
};

} // namespace vantra::tool
