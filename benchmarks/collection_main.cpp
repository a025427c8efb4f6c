#include "Collection.h"

#include <QtCore/QFile>

#include <cstdio>
#include <cstdlib>

// vlfolio-collection SHAPE DIRECTORY [FILES]: makes a collection in an empty directory and prints
// how many folders it has.
int main(int argc, char* argv[])
{
    const Collection::Shape* const shape = argc >= 3 ? Collection::shapeNamed(argv[1]) : nullptr;
    if (shape == nullptr) {
        std::fputs("usage: vlfolio-collection SHAPE DIRECTORY [FILES], SHAPE being one of", stderr);
        for (const Collection::Shape& known : Collection::shapes)
            std::fprintf(stderr, " %s", known.name.data());
        std::fputc('\n', stderr);
        return 2;
    }
    const int files = argc >= 4 ? std::atoi(argv[3]) : 20; // NOLINT(cert-err34-c)
    const Collection::Counts counts = Collection::make(*shape, QFile::decodeName(argv[2]), files);
    std::printf("%d\n", counts.folders());
    return EXIT_SUCCESS;
}
