/// @file NewFile.h
/// What the examples that write files share.
#pragma once

#include <kel/Base.h>
#include <kel/Error.h>
#include <kel/FileStream.h>
#include <kel/MTRand.h>
#include <kel/Number.h>
#include <kel/P.h>
#include <kel/Path.h>
#include <kel/Stream.h>

#include <filesystem>

/// A file that appears under its name once it is complete. Until then its bytes are in a file beside it with
/// a random name, which goes if commit() is never reached; a file of the name stays as it was.
class CNewFile : public kel::CBase, public kel::IOutStream {
public:
    explicit CNewFile(const kel::CPath& path)
        : path_(path),
          partPath_(path.getParent() / kel::CPath(".part-" + makeRandomText())),
          stream_(new kel::CFileOutStream(partPath_, kel::CFileOutStream::Mode::CreateNew)) {}
    CNewFile(const CNewFile&) = delete;
    CNewFile& operator=(const CNewFile&) = delete;
    ~CNewFile() override {
        if (committed_) return;
        stream_ = nullptr; // an open file cannot be removed everywhere
        std::error_code ignored;
        std::filesystem::remove(partPath_.toStdPath(), ignored);
    }

    void write(const void* data, std::size_t length) override { stream_->write(data, length); }
    void flush() override { stream_->flush(); }

    /// Gives the file its name, in place of one that has it.
    void commit() {
        stream_->close(); // reports what could not be written
        std::filesystem::rename(partPath_.toStdPath(), path_.toStdPath());
        committed_ = true;
    }

private:
    static kel::String makeRandomText() {
        const kel::CMutexLock lock(kel::CMTRand::getGlobalMutex());
        const kel::uint64 number = kel::CMTRand::getGlobal().rand64();
        return kel::hexEncode(&number, sizeof number);
    }

    const kel::CPath path_;
    const kel::CPath partPath_;
    kel::P<kel::CFileOutStream> stream_;
    bool committed_ = false;
};
