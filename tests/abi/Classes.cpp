#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLRegularExpression.h>
#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

// The compiler lays out only what is used: the size of a class, and its virtual destructor.
template <typename T>
void use(T* object)
{
    static_assert(sizeof(T) > 0); // NOLINT(bugprone-sizeof-expression)
    delete object;
}

template void use(VLClassificationResultsRendererHTML*);
template void use(VLEnumToStringTable<VLEventFolderTypeEnum>*);
template void use(VLEnumWrapper<VLEventFolderTypeEnum>*);
template void use(VLEventFolderClassificationResult*);
template void use(VLEventFolderClassificationResultList*);
template void use(VLEventFolderType*);
template void use(VLFolioEventClassifier*);
template void use(VLLogger*);
template void use(VLOccasionInfo*);
template void use(VLOccasionInfoList*);
template void use(VLPlatformIndependent*);
template void use(VLRegularExpression*);
template void use(VLSingleton<VLLogger>*);
