// Whatever is typed, deleted and pasted in whatever order, a time field shows a time.
#include "TimeMaskCheck.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    const QByteArray script(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const QString offence = fuzz::TimeMaskCheck::offenceOf(script);
    if (!offence.isNull()) {
        std::fprintf(stderr, "%s\n", qPrintable(offence));
        std::abort();
    }
    return 0;
}
