/// @file WebServer.h
/// The web server that the tests of this program share, and what they all do with requests.
#pragma once

#include <vantra/vantra.h>

#include <gtest/gtest.h>

#include "support/NginxServer.h"

#include <string>

/// Started for the first test that asks for it, stopped at the end of the program.
testsupport::NginxServer& webServer();

/// A request that trusts the server's authority and uses no proxy.
kel::P<vantra::CNetRequest> makeRequest(const std::string& url);

/// The body of the latest transfer.
std::string getBody(const vantra::CNetRequest& request);

/// Performs the request and returns the body.
std::string performForBody(vantra::CNetRequest& request);

/// Performs a request that must fail and returns its error.
vantra::CCURLError performForError(vantra::CNetRequest& request);

/// Tests that run once over HTTP and once over HTTPS.
class OverHTTPAndHTTPS : public testing::TestWithParam<const char*> {
protected:
    static std::string url(std::string_view path);
};
