// A user's program, built against the installed library: fetches what the URL names and prints it.
#include <vantra/vantra.h>

#include <iostream>

int main(int argc, char** argv) try {
    if (argc != 2) return 2;
    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(kel::String::fromUTF8(argv[1]));
    request->perform();
    const kel::TBuffer<unsigned char>& body = *request->getDefaultReceiveBuffer();
    std::cout.write(reinterpret_cast<const char*>(body.getData()),
                    static_cast<std::streamsize>(body.getUsed()));
    return 0;
} catch (const kel::CError& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
}
