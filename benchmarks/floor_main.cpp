#include "BareListings.h"

#include <cstdio>
#include <cstdlib>

// vlfolio-floor DIRECTORY: lists every folder twice, for its folders and for its files, and prints
// how many folders and files there are.
int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fputs("usage: vlfolio-floor DIRECTORY\n", stderr);
        return 2;
    }
    const BareListings::Counts counts = BareListings::twice(argv[1]);
    std::printf("%zu %zu\n", counts.folders, counts.files);
    return EXIT_SUCCESS;
}
