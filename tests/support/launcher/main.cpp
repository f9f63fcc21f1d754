// vantra_test_launcher PROGRAM [ARGUMENT]...
//
// Runs a test program that cannot start the servers of the tests itself, because it is a Windows program and
// they are not. The test program asks for them, and for all else that needs the system on which they run,
// over a loopback connection; the environment variable VANTRA_TEST_LAUNCHER tells it the port. What was
// started for it ends with its connection, or with the launcher. The exit status is that of the test program.

#include "support/Command.h"
#include "support/launcher/Message.h"
#include "support/Ports.h"
#include "support/posix/Spawn.h"
#include "support/ScriptedServer.h"
#include "support/StartedProgram.h"
#include "support/SystemError.h"
#include "support/TemporaryFolder.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport {

namespace {

/// Serves one connection.
class Session {
public:
    explicit Session(ScriptedConnection& connection) : connection_(connection) {}

    void run() {
        try {
            while (true) connection_.send(encodeMessage(replyTo(nextRequest())));
        } catch (const ClientGone&) {
            // Its program, if any, ends with this session.
        }
    }

private:
    Message nextRequest() {
        const auto readLine = [this] {
            std::string line = connection_.readUntil("\n");
            line.pop_back();
            return line;
        };
        return decodeMessage(readLine, [this](std::size_t count) { return connection_.readBytes(count); });
    }

    Message replyTo(const Message& request) {
        try {
            Message reply = perform(request);
            reply.insert(reply.begin(), std::string(doneReply));
            return reply;
        } catch (const std::exception& error) {
            return {std::string(failedReply), error.what()};
        }
    }

    Message perform(const Message& request) {
        const std::string& what = request.at(0);
        if (what == portRequest) return {std::to_string(freePort())};
        if (what == folderRequest) return {makeTemporaryFolder()};
        if (what == runRequest) return run(request);
        if (what == startRequest) return start(request);
        if (!process_) throw std::runtime_error("no program was started");
        if (what == statusRequest) return status();
        if (what == stopRequest) return {std::to_string(process_->stop())};
        if (what == outputRequest) return {process_->output()};
        if (what == signalRequest) {
            process_->send(static_cast<Signal>(numberIn(request.at(1))));
            return {};
        }
        throw std::runtime_error("unknown request: " + what);
    }

    static Message run(const Message& request) {
        const ProgramToLaunch program = programIn(request, 3);
        CommandOptions options;
        options.limit = std::chrono::milliseconds(numberIn(request.at(1)));
        options.workingDirectory = program.workingDirectory;
        options.environment = program.environment;
        const CommandResult result = runCommand(program.arguments, request.at(2), options);
        return {std::to_string(result.exitStatus), result.standardOutput, result.standardError};
    }

    Message start(const Message& request) {
        const ProgramToLaunch program = programIn(request, 5);
        ChildOptions options;
        options.outputFile = request.at(1);
        options.stopSignal = static_cast<Signal>(numberIn(request.at(2)));
        options.stopLimit = std::chrono::milliseconds(numberIn(request.at(3)));
        options.deathSignal = static_cast<Signal>(numberIn(request.at(4)));
        options.workingDirectory = program.workingDirectory;
        options.environment = program.environment;
        process_ = startProgram(program.arguments, options);
        return {std::to_string(process_->pid())};
    }

    Message status() {
        const std::optional<int> status = process_->exitStatus();
        return status ? Message{std::to_string(*status)} : Message{};
    }

    ScriptedConnection& connection_;
    std::unique_ptr<StartedProgram> process_;
};

/// Runs the test program with this process's standard files.
int runTestProgram(const std::vector<std::string>& arguments) {
    SpawnRequest request;
    request.arguments = arguments;
    request.standardOutput = STDOUT_FILENO;
    request.standardError = STDERR_FILENO;
    request.deathSignal = SIGKILL;
    const pid_t program = spawn(request);
    int status = 0;
    while (::waitpid(program, &status, 0) < 0) {
        if (errno != EINTR) throwErrno("wait for the test program");
    }
    return shellExitStatus(status);
}

int launch(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        std::cerr << "usage: vantra_test_launcher PROGRAM [ARGUMENT]...\n";
        return 2;
    }
    const ScriptedServer server([](ScriptedConnection& connection) { Session(connection).run(); });
    // What the test program has started may be one of its kind.
    ::setenv(launcherVariable, std::to_string(server.port()).c_str(), 1);
    return runTestProgram({arguments + 1, arguments + argumentCount});
}

} // namespace

} // namespace testsupport

int main(int argumentCount, char** arguments) {
    try {
        return testsupport::launch(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::cerr << "vantra_test_launcher: " << error.what() << '\n';
        return 2;
    }
}
