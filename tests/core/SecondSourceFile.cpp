#include <VLCore/VLGlobal.h>

const QString* kommaOfSecondSourceFile();

const QString* kommaOfSecondSourceFile()
{
    return &KOMMA;
}
