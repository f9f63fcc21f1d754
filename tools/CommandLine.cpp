#include "CommandLine.h"

#include "display/TerminalText.h"
#include "files/Output.h"
#include "Interrupt.h"
#include "LogHandler.h"

#include <vantra/GlobalInit.h>
#include <vantra/Version.h>

#include <CLI/CLI.hpp>
#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <new>
#include <sstream>

namespace vantra::tool {

using kel::CError;
using kel::String;

namespace {

std::string getVersionText() {
    CGlobalInit::ensureInitialized();
    return std::string("vantra ") + VANTRA_VERSION + "\n" + curl_version();
}

void configure(CLI::App& program) {
    program.require_subcommand(0, 1); // that one is needed is said below, in better words
    program.get_formatter()->label("SUBCOMMAND", "VERB");
    program.set_version_flag("--version", &getVersionText,
                             "Print the versions of vantra and libcurl and exit");
    program.allow_windows_style_options(false); // "/x" is the same on every platform: no option
    program.footer("The exit status is 0 on success, 1 on failure, 2 for arguments that cannot be right\n"
                   "and 130 after Ctrl-C.\n"
                   "vantra VERB --help tells a verb's options.");
}

/// Help and version come as exceptions too.
void writeRequestedText(const CLI::App& program, const CLI::Success& request) {
    std::ostringstream text;
    (void)program.exit(request, text, text);
    openOutput(std::nullopt)->write(text.str());
}

/// Of several the first one alone, and of an option no value: both may be secrets.
String describeUnexpectedArgument(const CLI::App& program) {
    const std::vector<std::string> arguments = program.remaining(true);
    const std::string first = arguments.empty() ? std::string() : arguments.front();
    if (first.empty()) return "An empty argument was not expected";
    const bool isOption = first.starts_with("-");
    return "The following argument was not expected: " +
           String::fromUTF8Lax(isOption ? first.substr(0, first.find('=')) : first);
}

String describeMissingVerb(const CLI::App& program) {
    String command = "vantra ";
    for (const CLI::App* group : program.get_subcommands()) command += String(group->get_name()) + " ";
    return "no verb was given; " + command + "--help lists them";
}

void run(IVerb& verb) {
    try {
        verb.run();
    } catch (const CUsageError&) {
        throw;
    } catch (const CClosedPipeError&) {
        throw;
    } catch (const CError& error) {
        if (isInterrupted()) throw;
        try {
            verb.report(&error);
        } catch (const CError&) {
            // The first failure is the one to tell of.
        }
        throw;
    }
    verb.report(nullptr);
}

void parseAndRun(CLI::App& program, std::vector<std::string> arguments, VerbAdder addVerbs) {
    VerbList verbs;
    addVerbs(program, verbs);
    std::reverse(arguments.begin(), arguments.end()); // the order in which the parser wants them
    try {
        program.parse(std::move(arguments));
    } catch (const CLI::Success& request) {
        writeRequestedText(program, request);
        return;
    } catch (const CLI::ExtrasError&) {
        throw CUsageError(describeUnexpectedArgument(program));
    } catch (const CLI::ParseError& error) {
        throw CUsageError(String::fromUTF8Lax(error.what()));
    }
    const auto chosen =
        std::find_if(verbs.begin(), verbs.end(), [](const auto& verb) { return verb->isChosen(); });
    if (chosen == verbs.end()) throw CUsageError(describeMissingVerb(program));
    if ((*chosen)->isQuiet()) kel::setLogHandler(new CSilentLogHandler());
    run(**chosen);
}

ExitStatus fail(const String& message) {
    if (isInterrupted()) endAsInterrupted();
    writeMessage(message);
    return ExitFailure;
}

} // namespace

ExitStatus runCommandLine(std::vector<std::string> arguments, VerbAdder addVerbs) noexcept {
    try {
        CLI::App program("Transfers data over the network.", "vantra");
        configure(program);
        parseAndRun(program, std::move(arguments), addVerbs);
        return ExitSuccess;
    } catch (const CUsageError& error) {
        writeMessage(error.getMessage());
        return ExitUsage;
    } catch (const CClosedPipeError&) {
        return ExitFailure;
    } catch (const CError& error) {
        return fail(error.getMessage());
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    } catch (const std::exception& error) {
        return fail(String::fromUTF8Lax(error.what()));
    } catch (...) {
        return fail("unknown error");
    }
}

} // namespace vantra::tool
