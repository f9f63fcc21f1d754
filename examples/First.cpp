#include <vantra/vantra.h>

#include <iostream>

int main(int argc, char** argv) try {
    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(argc > 1 ? argv[1] : "https://www.debian.org/");
    request->perform();
    std::cout << request->getHTTPStatusLine() << "\n";
    std::cout << request->getDefaultReceiveBuffer()->getUsed() << " bytes\n";
} catch (const kel::CError& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
}
