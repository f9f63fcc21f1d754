/// What the documents show of the programs' outputs.
#pragma once

#include <string>

/// The block of a document that follows the line "<!-- output: NAME -->".
/// @param document its path in the tree.
/// @throws std::runtime_error if there is none.
std::string documentedOutput(const std::string& document, const std::string& name);

/// An output without what differs from run to run: "example.org" in place of a local address with its port,
/// and "*" for times, dates, entity tags and ports.
std::string withoutRunDetails(const std::string& output);
