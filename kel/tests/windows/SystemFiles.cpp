#include "SystemFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <utility>
#include <vector>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

namespace {

/// What tells a file from every other one.
std::array<DWORD, 3> getIdentity(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!::GetFileInformationByHandle(file, &info)) return {};
    return {info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow};
}

/// The descriptors of the process that stand for this file.
std::vector<int> findDescriptors(const std::filesystem::path& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    const auto identity = getIdentity(file);
    ::CloseHandle(file);
    constexpr int descriptorLimit = 2048;
    std::vector<int> descriptors;
    for (int descriptor = 3; descriptor < descriptorLimit; ++descriptor) {
        const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
        if (handle != INVALID_HANDLE_VALUE && getIdentity(handle) == identity)
            descriptors.push_back(descriptor);
    }
    EXPECT_FALSE(descriptors.empty());
    return descriptors;
}

/// A file whose open descriptors come to stand for something that allows only the opposite of what they are
/// for.
class CExchangedFile : public CRefusingFile {
public:
    explicit CExchangedFile(int uselessAccess) : uselessAccess_(uselessAccess) {
        folder_.writeFile("file", "content");
    }
    [[nodiscard]] kel::CPath getPath() const override { return folder_ / "file"; }
    [[nodiscard]] std::string getReason() const override { return "Bad file descriptor"; }
    void beginToRefuse() override {
        const std::vector<int> descriptors = findDescriptors(folder_.getStdPath() / "file");
        EXPECT_EQ(descriptors.size(), 1U);
        for (const int descriptor : descriptors) {
            const int other = ::_open("NUL", uselessAccess_ | _O_BINARY);
            EXPECT_EQ(::_dup2(other, descriptor), 0);
            ::_close(other);
        }
    }

private:
    CTempFolder folder_;
    int uselessAccess_;
};

} // namespace

std::unique_ptr<CRefusingFile> makeUnreadableFile() { return std::make_unique<CExchangedFile>(_O_WRONLY); }

std::unique_ptr<CRefusingFile> makeUnwritableFile() { return std::make_unique<CExchangedFile>(_O_RDONLY); }

struct CPipeWriter::State {
    std::wstring path;
    HANDLE pipe = INVALID_HANDLE_VALUE;
    std::thread writer;
};

CPipeWriter::CPipeWriter(std::string text) : state_(new State()) {
    state_->path = L"\\\\.\\pipe\\kel-test-" + std::to_wstring(::GetCurrentProcessId());
    state_->pipe = ::CreateNamedPipeW(state_->path.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE | PIPE_WAIT,
                                      1, 4096, 4096, 0, nullptr);
    EXPECT_NE(state_->pipe, INVALID_HANDLE_VALUE);
    state_->writer = std::thread([pipe = state_->pipe, bytes = std::move(text)] {
        EXPECT_TRUE(::ConnectNamedPipe(pipe, nullptr) || ::GetLastError() == ERROR_PIPE_CONNECTED);
        DWORD written = 0;
        EXPECT_TRUE(::WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        ::FlushFileBuffers(pipe); // waits until all was read; closing would throw the rest away
        ::CloseHandle(pipe);
    });
}

CPipeWriter::~CPipeWriter() { state_->writer.join(); }

kel::CPath CPipeWriter::getPath() const { return kel::String(state_->path.c_str()); }

int countInheritableDescriptors(const std::filesystem::path& file) {
    int inheritable = 0;
    for (const int descriptor : findDescriptors(file)) {
        DWORD flags = 0;
        EXPECT_TRUE(::GetHandleInformation(reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor)), &flags));
        if ((flags & HANDLE_FLAG_INHERIT) != 0) ++inheritable;
    }
    return inheritable;
}

std::filesystem::path getProgramPath() {
    wchar_t path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_TRUE(length > 0 && length < MAX_PATH);
    return std::wstring(path, length);
}
