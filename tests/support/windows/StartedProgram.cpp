#include "support/StartedProgram.h"

#include "support/launcher/Launcher.h"

namespace testsupport {

namespace {

/// A program that the launcher runs for this one.
class LaunchedProgram : public StartedProgram {
public:
    LaunchedProgram(const std::vector<std::string>& arguments, const ChildOptions& options) {
        Message request{std::string(startRequest), options.outputFile, asText(options.stopSignal),
                        std::to_string(options.stopLimit.count()), asText(options.deathSignal)};
        appendProgram(request, arguments, options.workingDirectory, options.environment);
        pid_ = numberIn(launcher_.ask(request).at(0));
    }

    /// The launcher would notice the end of the connection, but nobody could tell when.
    ~LaunchedProgram() override {
        try {
            LaunchedProgram::stop();
        } catch (const std::exception&) {
            // The launcher is gone, and the program with it.
        }
    }

    pid_t pid() const override { return pid_; }

    std::optional<int> exitStatus() override {
        if (!exitStatus_) {
            const Message reply = launcher_.ask({std::string(statusRequest)});
            if (!reply.empty()) exitStatus_ = static_cast<int>(numberIn(reply.at(0)));
        }
        return exitStatus_;
    }

    void send(Signal signal) override { launcher_.ask({std::string(signalRequest), asText(signal)}); }

    int stop() override {
        if (!exitStatus_)
            exitStatus_ = static_cast<int>(numberIn(launcher_.ask({std::string(stopRequest)}).at(0)));
        return *exitStatus_;
    }

    std::string output() const override { return launcher_.ask({std::string(outputRequest)}).at(0); }

private:
    static std::string asText(Signal signal) { return std::to_string(static_cast<int>(signal)); }

    mutable Launcher launcher_;
    pid_t pid_ = 0;
    std::optional<int> exitStatus_;
};

} // namespace

std::unique_ptr<StartedProgram> startProgram(const std::vector<std::string>& arguments,
                                             const ChildOptions& options) {
    return std::make_unique<LaunchedProgram>(arguments, options);
}

} // namespace testsupport
