#include <VLCore/VLKomma_p.h>

const QString* kommaOfSecondSourceFile();

const QString* kommaOfSecondSourceFile()
{
    return &KOMMA;
}
