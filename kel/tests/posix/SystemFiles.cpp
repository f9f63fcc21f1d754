#include "SystemFiles.h"

#include "kel/FileStream.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class CDevice : public CRefusingFile {
public:
    CDevice(const char* path, const char* reason) : path_(path), reason_(reason) {}
    [[nodiscard]] kel::CPath getPath() const override { return path_; }
    [[nodiscard]] std::string getReason() const override { return reason_; }

private:
    kel::CPath path_;
    std::string reason_;
};

} // namespace

// The system refuses to read a process's memory at address 0.
std::unique_ptr<CRefusingFile> makeUnreadableFile() {
    return std::make_unique<CDevice>("/proc/self/mem", "Input/output error");
}

// Whatever is written to this device finds the disk full.
std::unique_ptr<CRefusingFile> makeUnwritableFile() {
    return std::make_unique<CDevice>("/dev/full", "No space left on device");
}

struct CPipeWriter::State {
    CTempFolder folder;
    std::thread writer;
};

CPipeWriter::CPipeWriter(std::string text) : state_(new State()) {
    EXPECT_EQ(::mkfifo((state_->folder.getStdPath() / "pipe").c_str(), 0600), 0);
    state_->writer = std::thread([path = getPath(), bytes = std::move(text)] {
        kel::CFileOutStream(path, kel::CFileOutStream::Mode::Replace).write(bytes.data(), bytes.size());
    });
}

CPipeWriter::~CPipeWriter() { state_->writer.join(); }

kel::CPath CPipeWriter::getPath() const { return state_->folder / "pipe"; }

int countInheritableDescriptors(const std::filesystem::path& file) {
    int inheritable = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const auto target = std::filesystem::read_symlink(entry.path(), gone);
        const int descriptor = std::stoi(entry.path().filename());
        if (target == file && (::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0) ++inheritable;
    }
    return inheritable;
}

std::filesystem::path getProgramPath() { return std::filesystem::canonical("/proc/self/exe"); }
