// Stands alone, so that it can be built by any compiler with any options from the sources directly.
#include <cstdio>
#include <cstdlib>

#include "ZULExpEnclosureCases.h"

int main(int argc, char** argv)
{
    const int nbCases = argc > 1 ? std::atoi(argv[1]) : 1000000;
    const std::string failure = ZULExpEnclosureCases::CheckAll(nbCases);
    std::printf("%s\n", failure.empty() ? "every result encloses" : failure.c_str());
    return failure.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
