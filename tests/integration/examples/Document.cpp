#include "Document.h"

#include "support/TempDir.h"

#include <regex>
#include <sstream>
#include <stdexcept>

std::string documentedOutput(const std::string& document, const std::string& name) {
    std::istringstream lines(testsupport::readWholeFile(TREE_FOLDER "/" + document));
    std::string line;
    while (std::getline(lines, line) && line != "<!-- output: " + name + " -->") {
    }
    if (!std::getline(lines, line) || !line.starts_with("```"))
        throw std::runtime_error(document + " does not show the output of " + name);
    std::string output;
    while (std::getline(lines, line) && line != "```") output += line + "\n";
    return output;
}

std::string withoutRunDetails(const std::string& output) {
    std::string text = std::regex_replace(output, std::regex(R"(127\.0\.0\.1:\d+)"), "example.org");
    for (const char* detail :
         {R"((logTime=")[^"]*)", R"(((?:Date|Last-Modified): )[^<]*)", R"((ETag: )[^<]*)", R"(( port )\d+)"})
        text = std::regex_replace(text, std::regex(detail), "$1*");
    return text;
}
