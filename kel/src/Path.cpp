#include "kel/Path.h"

#include "Platform.h"

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

constexpr std::size_t driveLength = 2;

/// What separates the components of a normalised path.
template <class Traits>
wchar_t getSeparator() noexcept {
    const wchar_t native = platform::pathSeparator();
    return Traits::isSeparator(native) ? native : L'/';
}

template <class Traits>
bool startsWithDrive(std::wstring_view text) noexcept {
    if constexpr (Traits::hasDrives) {
        if (text.size() < driveLength) return false;
        const wchar_t letter = toLowerASCII(text[0]);
        return letter >= L'a' && letter <= L'z' && text[1] == L':';
    }
    return false;
}

template <class Traits>
std::size_t countLeadingSeparators(std::wstring_view text) noexcept {
    const auto first =
        std::find_if(text.begin(), text.end(), [](wchar_t c) { return !Traits::isSeparator(c); });
    return static_cast<std::size_t>(first - text.begin());
}

/// Takes the text up to the next separator off the front.
template <class Traits>
std::wstring_view takeComponent(std::wstring_view& text) noexcept {
    const auto end = std::find_if(text.begin(), text.end(), &Traits::isSeparator);
    const std::wstring_view component = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(component.size());
    return component;
}

/// Takes what names the place that the path starts from off the front and appends it to `result`: a share's
/// server, a drive, a root, or nothing.
template <class Traits>
void moveRoot(std::wstring_view& text, String& result) {
    const wchar_t separator = getSeparator<Traits>();
    const std::size_t separators = countLeadingSeparators<Traits>(text);
    if (Traits::hasDrives && separators == 2 && text.size() > separators) {
        result += separator;
        result += separator;
        text.remove_prefix(separators);
        // As it is, even if it is ".": that server stands for the devices of the machine.
        result.append(takeComponent<Traits>(text));
        return;
    }
    if (startsWithDrive<Traits>(text)) {
        result.append(text.substr(0, driveLength));
        text.remove_prefix(driveLength);
    }
    if (countLeadingSeparators<Traits>(text) > 0) result += separator;
}

template <class Traits>
String normalise(std::wstring_view text) {
    const wchar_t separator = getSeparator<Traits>();
    String result;
    result.reserve(text.size());
    moveRoot<Traits>(text, result);
    const bool isDriveOnly = startsWithDrive<Traits>(result.view()) && result.length() == driveLength;
    // What follows the server of a share needs a separator, what follows a root or a drive has it or needs
    // none.
    bool needsSeparator = !result.isEmpty() && !isDriveOnly && result[result.length() - 1] != separator;
    while (!text.empty()) {
        text.remove_prefix(countLeadingSeparators<Traits>(text));
        const std::wstring_view component = takeComponent<Traits>(text);
        if (component.empty() || component == L".") continue;
        if (needsSeparator) result += separator;
        // A name in the current folder that looks like a drive would become one without the ".".
        if (result.isEmpty() && startsWithDrive<Traits>(component)) {
            result += L'.';
            result += separator;
        }
        result.append(component);
        needsSeparator = true;
    }
    return result;
}

/// The length of what moveRoot() put at the front of a normalised path.
template <class Traits>
std::size_t getRootLength(std::wstring_view text) noexcept {
    const std::size_t separators = countLeadingSeparators<Traits>(text);
    if (separators == 2) {
        const std::size_t end = text.find(getSeparator<Traits>(), separators);
        return std::min(end, text.size());
    }
    if (!startsWithDrive<Traits>(text)) return separators;
    return driveLength + countLeadingSeparators<Traits>(text.substr(driveLength));
}

} // namespace

wchar_t nativePathSeparator() noexcept { return platform::pathSeparator(); }

template <class Traits>
TPathImpl<Traits>::TPathImpl() = default;

template <class Traits>
TPathImpl<Traits>::TPathImpl(const String& text) : text_(normalise<Traits>(text.view())) {}

template <class Traits>
TPathImpl<Traits>::TPathImpl(const char* utf8) : TPathImpl(String(utf8)) {}

template <class Traits>
const String& TPathImpl<Traits>::getText() const noexcept {
    return text_;
}

template <class Traits>
bool TPathImpl<Traits>::isEmpty() const noexcept {
    return text_.isEmpty();
}

template <class Traits>
bool TPathImpl<Traits>::isAbsolute() const noexcept {
    const std::wstring_view text = text_.view();
    return getRootLength<Traits>(text) > (startsWithDrive<Traits>(text) ? driveLength : 0);
}

template <class Traits>
TPathImpl<Traits> TPathImpl<Traits>::operator/(const TPathImpl& other) const {
    if (isEmpty() || other.isAbsolute()) return other;
    if (other.isEmpty()) return *this;
    const std::wstring_view folder = text_.view();
    // Behind a bare drive a separator would turn the drive's current folder into its root.
    const bool isDriveOnly = startsWithDrive<Traits>(folder) && folder.size() == driveLength;
    TPathImpl result(*this);
    if (!isDriveOnly && folder.back() != getSeparator<Traits>()) result.text_ += getSeparator<Traits>();
    result.text_ += other.text_;
    return result;
}

template <class Traits>
String TPathImpl<Traits>::getFileName() const {
    const std::size_t rootLength = getRootLength<Traits>(text_.view());
    const std::size_t separator = text_.findLast(getSeparator<Traits>());
    return text_.substr(separator == String::npos ? rootLength : std::max(separator + 1, rootLength));
}

template <class Traits>
TPathImpl<Traits> TPathImpl<Traits>::getParent() const {
    const std::size_t rootLength = getRootLength<Traits>(text_.view());
    if (text_.length() == rootLength) return {};
    const std::size_t separator = text_.findLast(getSeparator<Traits>());
    TPathImpl parent;
    parent.text_ = text_.substr(0, separator == String::npos ? rootLength : std::max(separator, rootLength));
    return parent;
}

template <class Traits>
std::filesystem::path TPathImpl<Traits>::toStdPath() const {
    return platform::toStdPath(text_);
}

template class TPathImpl<CWindowsPathTraits>;
template class TPathImpl<CPosixPathTraits>;

} // namespace kel
