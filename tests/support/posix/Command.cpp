#include "support/Command.h"

#include "support/posix/FileDescriptor.h"
#include "support/posix/Spawn.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace testsupport {

namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throwErrno("make a pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

void makeNonBlocking(const FileDescriptor& descriptor) {
    if (::fcntl(descriptor.get(), F_SETFL, O_NONBLOCK) != 0) throwErrno("make a pipe non-blocking");
}

/// Keeps SIGPIPE from this thread for the object's life, and swallows one that writing to a pipe has raised
/// meanwhile.
class PipeSignalGuard {
public:
    PipeSignalGuard() {
        ::sigemptyset(&pipeSignal_);
        ::sigaddset(&pipeSignal_, SIGPIPE);
        ::pthread_sigmask(SIG_BLOCK, &pipeSignal_, &previous_);
    }
    ~PipeSignalGuard() {
        const timespec atOnce{};
        while (::sigtimedwait(&pipeSignal_, nullptr, &atOnce) == SIGPIPE) {
        }
        ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }
    PipeSignalGuard(const PipeSignalGuard&) = delete;
    PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

private:
    sigset_t pipeSignal_;
    sigset_t previous_;
};

/// A program while it runs: feeds it, collects what it writes, and waits for its end, all within one time
/// limit.
class RunningCommand {
public:
    RunningCommand(const std::vector<std::string>& arguments, std::string_view standardInput,
                   const CommandOptions& options)
        : program_(arguments.at(0)),
          unsent_(standardInput),
          limit_(options.limit),
          deadline_(Clock::now() + options.limit) {
        Pipe input = makePipe();
        Pipe output = makePipe();
        Pipe error = makePipe();
        SpawnRequest request;
        request.arguments = arguments;
        request.workingDirectory = options.workingDirectory;
        request.environment = options.environment;
        request.standardInput = input.readEnd.get();
        request.standardOutput = output.writeEnd.get();
        request.standardError = error.writeEnd.get();
        request.deathSignal = SIGKILL;
        pid_ = spawn(request);
        input_ = std::move(input.writeEnd);
        output_ = std::move(output.readEnd);
        error_ = std::move(error.readEnd);
    }

    ~RunningCommand() {
        if (!reaped_) reap();
    }

    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;

    CommandResult finish() {
        makeNonBlocking(input_);
        const PipeSignalGuard guard;
        if (unsent_.empty()) input_.reset();
        while (output_.isOpen() || error_.isOpen()) exchange();
        // With its outputs closed a program usually is at its end, so look at once and then often.
        while (!hasEnded()) {
            throwIfLate();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        reap();
        return result_;
    }

private:
    void exchange() {
        // The program is what the outputs are read for: one that it left behind may hold them open for
        // longer.
        if (hasEnded()) ::kill(-pid_, SIGKILL);
        std::array<pollfd, 3> entries{
            {{input_.get(), POLLOUT, 0}, {output_.get(), POLLIN, 0}, {error_.get(), POLLIN, 0}}};
        constexpr int pauseBetweenLooksAtTheProgram = 50;
        if (::poll(entries.data(), entries.size(), pauseBetweenLooksAtTheProgram) < 0 && errno != EINTR) {
            throwErrno("wait for " + program_);
        }
        if (entries[0].revents != 0) feed();
        if (entries[1].revents != 0) collect(output_, result_.standardOutput);
        if (entries[2].revents != 0) collect(error_, result_.standardError);
        throwIfLate();
    }

    void feed() {
        const ssize_t size = ::write(input_.get(), unsent_.data(), unsent_.size());
        if (size >= 0) unsent_.remove_prefix(static_cast<std::size_t>(size));
        if (unsent_.empty() || (size < 0 && errno == EPIPE)) {
            input_.reset();
        } else if (size < 0 && errno != EAGAIN && errno != EINTR) {
            throwErrno("write to " + program_);
        }
    }

    void collect(FileDescriptor& source, std::string& target) const {
        std::array<char, 65536> buffer;
        const ssize_t size = ::read(source.get(), buffer.data(), buffer.size());
        if (size < 0 && errno == EINTR) return;
        if (size < 0) throwErrno("read the output of " + program_);
        if (size == 0)
            source.reset();
        else
            target.append(buffer.data(), static_cast<std::size_t>(size));
    }

    void throwIfLate() const {
        if (Clock::now() < deadline_) return;
        throw std::runtime_error(
            program_ + " was killed because it ran for longer than " + std::to_string(limit_.count()) +
            " ms; its output: " + result_.standardOutput + "; its error output: " + result_.standardError);
    }

    bool hasEnded() const {
        siginfo_t information{};
        const int result =
            ::waitid(P_PID, static_cast<id_t>(pid_), &information, WEXITED | WNOHANG | WNOWAIT);
        return result != 0 || information.si_pid != 0;
    }

    /// Ends what is left of the program's process group, then the program's number may be given up.
    void reap() {
        reaped_ = true;
        ::kill(-pid_, SIGKILL);
        int status = 0;
        while (::waitpid(pid_, &status, 0) < 0) {
            if (errno != EINTR) break;
        }
        result_.exitStatus = shellExitStatus(status);
    }

    const std::string program_;
    std::string_view unsent_;
    const std::chrono::milliseconds limit_;
    const Clock::time_point deadline_;
    pid_t pid_ = -1;
    bool reaped_ = false;
    FileDescriptor input_;
    FileDescriptor output_;
    FileDescriptor error_;
    CommandResult result_;
};

} // namespace

CommandResult runCommand(const std::vector<std::string>& arguments, std::string_view standardInput,
                         const CommandOptions& options) {
    return RunningCommand(arguments, standardInput, options).finish();
}

} // namespace testsupport
