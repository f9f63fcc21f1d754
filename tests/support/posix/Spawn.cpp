#include "support/posix/Spawn.h"

#include "support/posix/FileDescriptor.h"

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace testsupport {

namespace {

/// All that the new process needs, made ready before the fork because it must not allocate.
struct ChildPlan {
    const char* program;
    char* const* arguments;
    char* const* environment;
    const char* workingDirectory; // null for the parent's
    int standardFiles[3];         // all of them above 2
    int errorPipe;
    int deathSignal;
    pid_t parent;
};

/// Tells the parent why the program could not be started.
[[noreturn]] void reportAndExit(const ChildPlan& plan) {
    const int error = errno;
    ::syscall(SYS_write, plan.errorPipe, &error, sizeof error);
    ::_exit(127);
}

/// Runs in the new process. Other threads of the parent may have held any lock at the fork, so this makes
/// system calls only, and makes them directly: a sanitizer's wrappers take locks too.
[[noreturn]] void becomeProgram(const ChildPlan& plan) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, plan.deathSignal);
    if (::getppid() != plan.parent) ::_exit(127);
    for (int target = 0; target < 3; ++target) {
        if (::syscall(SYS_dup3, plan.standardFiles[target], target, 0) < 0) reportAndExit(plan);
    }
    if (::syscall(SYS_close_range, 3U, ~0U, 4U /* CLOSE_RANGE_CLOEXEC */) < 0) reportAndExit(plan);
    if (plan.workingDirectory != nullptr && ::chdir(plan.workingDirectory) != 0) reportAndExit(plan);
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigaction(SIGPIPE, &action, nullptr);
    constexpr std::size_t kernelSignalSetSize = 8;
    const unsigned long noSignals = 0;
    ::syscall(SYS_rt_sigprocmask, SIG_SETMASK, &noSignals, nullptr, kernelSignalSetSize);
    ::execve(plan.program, plan.arguments, plan.environment);
    reportAndExit(plan);
}

/// This process's environment with the changes, as NAME=value lines.
std::vector<std::string> mergedEnvironment(const Environment& changes) {
    std::vector<std::string> lines;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view line(*entry);
        if (!changes.contains(std::string(line.substr(0, line.find('='))))) lines.emplace_back(line);
    }
    for (const auto& [name, value] : changes) {
        if (value) lines.push_back(name + "=" + *value);
    }
    return lines;
}

/// The null-terminated array that execve() wants, pointing into the texts.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// A second descriptor for the file that is none of the standard three, so that putting one standard file in
/// place never closes another.
FileDescriptor aboveStandardFiles(int descriptor) {
    return checkedDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3), "duplicate a descriptor");
}

FileDescriptor openNullFile() {
    return checkedDescriptor(::open("/dev/null", O_RDWR | O_CLOEXEC), "open /dev/null");
}

/// Waits until the new process has become its program; the pipe closes then, or brings an errno.
void awaitExec(const FileDescriptor& errorPipe, pid_t child, const std::string& program) {
    int error = 0;
    ssize_t size = 0;
    do {
        size = ::read(errorPipe.get(), &error, sizeof error);
    } while (size < 0 && errno == EINTR);
    if (size == 0) return;
    ::waitpid(child, nullptr, 0);
    throw std::system_error(error, std::generic_category(), "cannot start " + program);
}

pid_t forkAndExec(const SpawnRequest& request) {
    const std::string program = findProgram(request.arguments.at(0));
    std::vector<std::string> arguments = request.arguments;
    std::vector<std::string> environment = mergedEnvironment(request.environment);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);

    const FileDescriptor null = openNullFile();
    const auto standardFile = [&null](int given) {
        return aboveStandardFiles(given < 0 ? null.get() : given);
    };
    const FileDescriptor input = standardFile(request.standardInput);
    const FileDescriptor output = standardFile(request.standardOutput);
    const FileDescriptor errorOutput = standardFile(request.standardError);

    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0) throwErrno("make a pipe");
    const FileDescriptor readEnd(pipeEnds[0]);
    FileDescriptor writeEnd(pipeEnds[1]);
    FileDescriptor errorPipe = aboveStandardFiles(writeEnd.get());
    writeEnd.reset();

    ChildPlan plan{program.c_str(),
                   argumentPointers.data(),
                   environmentPointers.data(),
                   request.workingDirectory.empty() ? nullptr : request.workingDirectory.c_str(),
                   {input.get(), output.get(), errorOutput.get()},
                   errorPipe.get(),
                   request.deathSignal,
                   ::getpid()};
    const pid_t child = ::fork();
    if (child < 0) throwErrno("fork");
    if (child == 0) becomeProgram(plan);
    errorPipe.reset();
    awaitExec(readEnd, child, program);
    return child;
}

/// The thread from which every program is started.
///
/// The signal for the parent's death is in truth sent when the thread that forked ends, so that thread has to
/// live as long as the process.
class SpawnThread {
public:
    SpawnThread() : thread_([this] { run(); }) {}

    ~SpawnThread() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        changed_.notify_one();
        thread_.join();
    }

    pid_t spawn(const SpawnRequest& request) {
        std::packaged_task<pid_t()> task([&request] { return forkAndExec(request); });
        std::future<pid_t> result = task.get_future();
        {
            const std::lock_guard lock(mutex_);
            tasks_.push_back(std::move(task));
        }
        changed_.notify_one();
        return result.get();
    }

private:
    void run() {
        blockAllSignals();
        std::unique_lock lock(mutex_);
        while (true) {
            changed_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
            if (tasks_.empty()) return;
            std::packaged_task<pid_t()> task = std::move(tasks_.front());
            tasks_.pop_front();
            lock.unlock();
            task();
            lock.lock();
        }
    }

    /// No handler of the test program may run in the new process, which inherits the mask until it resets it.
    static void blockAllSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::packaged_task<pid_t()>> tasks_;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace

pid_t spawn(const SpawnRequest& request) {
    static SpawnThread thread;
    return thread.spawn(request);
}

std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    const char* path = std::getenv("PATH");
    std::istringstream folders(std::string(path == nullptr ? "" : path) +
                               ":/usr/local/sbin:/usr/sbin:/sbin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string candidate = folder;
        candidate.append("/").append(name);
        if (!folder.empty() && ::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    throw std::runtime_error("the program " + name + " is not installed");
}

int shellExitStatus(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

} // namespace testsupport
