#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>
#include <cstdlib>

#if defined(Q_OS_MACOS)
#    include <mach/mach.h>
#else
#    include <unistd.h>
#endif

namespace {

// Returns how many bytes of the process are in memory now.
double residentSize()
{
#if defined(Q_OS_MACOS)
    mach_task_basic_info info {};
    mach_msg_type_number_t count = MACH_TASK_BASIC_INFO_COUNT;
    task_info(mach_task_self(), MACH_TASK_BASIC_INFO, reinterpret_cast<task_info_t>(&info), &count);
    return static_cast<double>(info.resident_size);
#else
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read /proc/self/statm");
    return file.readAll().split(' ').at(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE));
#endif
}

} // namespace

// vlfolio-memory DIRECTORY: prints how many folders a walk found, and by how many bytes for each of
// them the process has grown when it ends, while the results are kept.
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: vlfolio-memory DIRECTORY\n", stderr);
        return 2;
    }
    const QFileInfo root(QFile::decodeName(argv[1]));
    VLFolioEventClassifier classifier(root);
    // The memory that a process needs once, for patterns and locales, is not counted.
    if (classifier.eventFolderType(QStringLiteral("Beach")) != VLEventFolderTypeEnum::Unknown)
        return EXIT_FAILURE;

    const double before = residentSize();
    const auto results = classifier.eventFolderTypes(root, VLEventFolderClassificationResult());
    const double after = residentSize();
    std::printf("%lld %.0f\n", static_cast<long long>(results.size()),
                (after - before) / static_cast<double>(results.size()));
    return EXIT_SUCCESS;
}
