#include "SystemFiles.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>

#include <windows.h>

#include <io.h>

namespace {

/// A file whose bytes another handle has locked.
class CLockedFile : public CRefusingFile {
public:
    CLockedFile() {
        folder_.writeFile("locked", "content");
        handle_ = ::CreateFileW((folder_.getStdPath() / "locked").c_str(), GENERIC_READ,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
        OVERLAPPED start{};
        EXPECT_TRUE(::LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, MAXDWORD, 0,
                                 &start));
    }
    CLockedFile(const CLockedFile&) = delete;
    CLockedFile& operator=(const CLockedFile&) = delete;
    ~CLockedFile() override { ::CloseHandle(handle_); }
    [[nodiscard]] kel::CPath getPath() const override { return folder_ / "locked"; }
    [[nodiscard]] std::string getReason() const override { return "Permission denied"; }

private:
    CTempFolder folder_;
    HANDLE handle_;
};

} // namespace

std::unique_ptr<CRefusingFile> makeUnreadableFile() { return std::make_unique<CLockedFile>(); }

std::unique_ptr<CRefusingFile> makeUnwritableFile() { return std::make_unique<CLockedFile>(); }

struct CPipeWriter::State {
    std::wstring path;
    HANDLE pipe = INVALID_HANDLE_VALUE;
    std::thread writer;
};

CPipeWriter::CPipeWriter(std::string text) : state_(new State()) {
    state_->path = L"\\\\.\\pipe\\kel-test-" + std::to_wstring(::GetCurrentProcessId());
    state_->pipe = ::CreateNamedPipeW(state_->path.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1,
                                      4096, 4096, 0, nullptr);
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
    constexpr int descriptorLimit = 2048;
    int inheritable = 0;
    for (int descriptor = 3; descriptor < descriptorLimit; ++descriptor) {
        const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
        DWORD flags = 0;
        wchar_t name[MAX_PATH];
        if (handle == INVALID_HANDLE_VALUE || !::GetHandleInformation(handle, &flags)) continue;
        const DWORD length = ::GetFinalPathNameByHandleW(handle, name, MAX_PATH, 0);
        if (length == 0 || length >= MAX_PATH) continue;
        std::error_code ignored;
        if (std::filesystem::equivalent(name, file, ignored) && (flags & HANDLE_FLAG_INHERIT) != 0) ++inheritable;
    }
    return inheritable;
}

std::filesystem::path getProgramPath() {
    wchar_t path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_TRUE(length > 0 && length < MAX_PATH);
    return std::wstring(path, length);
}
