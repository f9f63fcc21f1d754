#include "support/StartedProgram.h"

#include "support/posix/FileDescriptor.h"
#include "support/posix/ProcessGroup.h"
#include "support/posix/Spawn.h"
#include "support/Wait.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport {

namespace {

FileDescriptor openOutput(const std::string& file) {
    if (file.empty())
        return checkedDescriptor(::memfd_create("child output", MFD_CLOEXEC), "make a file in memory");
    constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC;
    return checkedDescriptor(::open(file.c_str(), flags, 0600), "open " + file);
}

SpawnRequest requestFor(const std::vector<std::string>& arguments, const ChildOptions& options, int output) {
    SpawnRequest request;
    request.arguments = arguments;
    request.workingDirectory = options.workingDirectory;
    request.environment = options.environment;
    request.standardOutput = output;
    request.standardError = output;
    request.deathSignal = static_cast<int>(options.deathSignal);
    return request;
}

/// A child process at the head of a process group of its own.
class ProcessGroup : public StartedProgram {
public:
    ProcessGroup(const std::vector<std::string>& arguments, const ChildOptions& options)
        : stopSignal_(options.stopSignal),
          stopLimit_(options.stopLimit),
          program_(arguments.at(0)),
          output_(openOutput(options.outputFile)),
          pid_(spawn(requestFor(arguments, options, output_.get()))) {}
    ~ProcessGroup() override { stopNow(); }

    pid_t pid() const override { return pid_; }

    std::optional<int> exitStatus() override {
        isRunning();
        return exitStatus_;
    }

    void send(Signal signal) override {
        if (isRunning()) ::kill(pid_, static_cast<int>(signal));
    }

    int stop() override {
        stopNow();
        return *exitStatus_;
    }

    std::string output() const override {
        std::string text;
        std::array<char, 65536> buffer;
        while (true) {
            const ssize_t size =
                ::pread(output_.get(), buffer.data(), buffer.size(), static_cast<off_t>(text.size()));
            if (size < 0) throwErrno("read the output of " + program_);
            if (size == 0) return text;
            text.append(buffer.data(), static_cast<std::size_t>(size));
        }
    }

private:
    bool isRunning() {
        if (exitStatus_) return false;
        siginfo_t information{};
        const int result =
            ::waitid(P_PID, static_cast<id_t>(pid_), &information, WEXITED | WNOHANG | WNOWAIT);
        if (result == 0 && information.si_pid == 0) return true;
        reap();
        return false;
    }

    void stopNow() {
        if (!isRunning()) return;
        ::kill(pid_, static_cast<int>(stopSignal_));
        if (!waitUntil([this] { return !isRunning(); }, stopLimit_)) reap();
    }

    /// Ends what the child has left behind and takes its exit status. In this order: as long as the child has
    /// not been waited for, its number, and so that of its group, cannot belong to anybody else.
    void reap() {
        ::kill(-pid_, SIGKILL);
        int status = 0;
        while (::waitpid(pid_, &status, 0) < 0) {
            if (errno != EINTR) break;
        }
        exitStatus_ = shellExitStatus(status);
        // A killed worker may keep its ports for another moment.
        waitUntil([this] { return !isGroupRunning(pid_); }, stopLimit_);
    }

    const Signal stopSignal_;
    const std::chrono::milliseconds stopLimit_;
    const std::string program_;
    FileDescriptor output_;
    pid_t pid_;
    std::optional<int> exitStatus_;
};

} // namespace

std::unique_ptr<StartedProgram> startProgram(const std::vector<std::string>& arguments,
                                             const ChildOptions& options) {
    return std::make_unique<ProcessGroup>(arguments, options);
}

} // namespace testsupport
