/// @file support/FlatJson.h
/// What servers note about their clients, as lines of JSON.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace testsupport {

/// Reads a flat JSON object of strings and non-negative integers without any white space between them;
/// numbers become their digits.
/// @throws std::runtime_error "not a flat JSON object: TEXT" for anything else.
std::map<std::string, std::string> parseFlatJson(std::string_view text);

} // namespace testsupport
