#include "CommandLine.h"
#include "files/StandardFiles.h"
#include "LogHandler.h"
#include "Verbs.h"

#include <kel/Log.h>

int main(int argc, char** argv) {
    using namespace vantra::tool;
    prepareStandardFiles();
    kel::setLogHandler(new CLogHandler());
    return runCommandLine(getArguments(argc, argv), &addVerbs);
}
