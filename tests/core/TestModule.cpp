#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLSingleton.h>
#include <VLFolioEventClassifier/VLEventFolderType.h>

// What this module takes for the shared objects of the process. The test finds these functions by
// name with dlsym().
extern "C" {

Q_DECL_EXPORT const void* moduleLogger();
Q_DECL_EXPORT const void* moduleTypeTable();
Q_DECL_EXPORT const void* modulePlatform();
Q_DECL_EXPORT const void* moduleSetPlatform();

const void* moduleLogger()
{
    return VLSingleton<VLLogger>::instance();
}

const void* moduleTypeTable()
{
    return VLEventFolderType().enumToStringTable();
}

const void* modulePlatform()
{
    return VLPlatformIndependent::instance();
}

const void* moduleSetPlatform()
{
    static VLPlatformIndependent ofModule;
    VLPlatformIndependent::setInstance(&ofModule);
    return &ofModule;
}
}
