#include "files/Input.h"

#include "files/StandardFiles.h"

#include <kel/Base.h>
#include <kel/Error.h>
#include <kel/FileStream.h>
#include <kel/Path.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace vantra::tool {

using kel::CBase;
using kel::CError;
using kel::CFileInStream;
using kel::CPath;
using kel::IInStream;
using kel::int64;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

class CInputFile : public CBase, public IInStream {
public:
    explicit CInputFile(const String& name)
        : path_(name), stream_(new CFileInStream(path_)), size_(settleSize()) {}

    std::size_t read(void* buffer, std::size_t maxLength) override {
        if (size_ == -1) return stream_->read(buffer, maxLength);
        const auto left = static_cast<std::size_t>(std::max<int64>(size_ - stream_->getPosition(), 0));
        const std::size_t wanted = std::min(maxLength, left);
        const std::size_t count = stream_->read(buffer, wanted);
        if (count == 0 && wanted != 0)
            throw CError("Error reading file '" + path_.getText() +
                         "': it became shorter while it was read.");
        return count;
    }

    int64 getSize() override { return size_; }
    void seek(int64 position) override { stream_->seek(position); }
    int64 getPosition() override { return stream_->getPosition(); }

private:
    /// An empty file is either that, or one whose content the system makes up while it is read.
    int64 settleSize() {
        const int64 size = stream_->getSize();
        char byte = 0;
        if (size != 0 || stream_->read(&byte, 1) == 0) return size;
        stream_->seek(0);
        return -1;
    }

    CPath path_;
    P<CFileInStream> stream_;
    int64 size_;
};

class CStandardInput : public CBase, public IInStream {
public:
    std::size_t read(void* buffer, std::size_t maxLength) override {
        std::size_t count = 0;
        const int error = readStandardInput(buffer, maxLength, count);
        if (error != 0)
            throw CError("Error reading standard input: " + String(std::generic_category().message(error)) +
                         ".");
        position_ += static_cast<int64>(count);
        return count;
    }

    int64 getSize() override { return -1; }
    void seek(int64 position) override {
        if (position != position_) throw CError("Standard input cannot be sent a second time.");
    }
    int64 getPosition() override { return position_; }

private:
    int64 position_ = 0;
};

} // namespace

P<IInStream> openInput(const String& name) {
    if (name == "-") return new CStandardInput();
    return new CInputFile(name);
}

P<TBuffer<unsigned char>> readInput(const String& name, std::size_t maxLength) {
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    const P<IInStream> input = openInput(name);
    P<TBuffer<unsigned char>> content = new TBuffer<unsigned char>();
    const auto refuseIf = [&](bool isTooLarge) {
        if (isTooLarge)
            throw CError("'" + CPath(name).getText() + "' is larger than " + String::fromUInt(maxLength) +
                         " bytes, the most that can be sent.");
    };
    if (input->getSize() > 0) {
        const auto size = static_cast<std::size_t>(input->getSize());
        refuseIf(size > maxLength);
        content->reserve(size);
    }
    std::array<unsigned char, blockSize> block;
    while (const std::size_t count = input->read(block.data(), block.size())) {
        refuseIf(count > maxLength - content->getUsed());
        content->append(block.data(), count);
    }
    return content;
}

} // namespace vantra::tool
