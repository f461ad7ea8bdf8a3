// Puts the certificate of a CA into the list of those that the current user trusts: for a demonstration in a
// Wine system of its own.
#include "self-check/UserRoots.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char** argv)
{
    std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
    if (!file) {
        std::cerr << "usage: vantry-trust-ca CA.der\n";
        return 1;
    }
    try {
        trustByUser({std::istreambuf_iterator<char>(file), {}});
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vantry-trust-ca: " << error.what() << '\n';
        return 1;
    }
}
