#include <vantra/vantra.h>

#include <iostream>

int main(int, char** argv) try {
    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(argv[1]);
    request->perform();
    std::cout << request->getDefaultReceiveBuffer()->getUsed() << " bytes\n";
} catch (const kel::CError& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
}
