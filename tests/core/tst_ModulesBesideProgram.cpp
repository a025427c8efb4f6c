#include "LoadedModule.h"

#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLSingleton.h>
#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtTest/QTest>

/// A program that links the libraries and a module that does so, too: one of each shared object.
class tst_ModulesBesideProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void one_logger();
    void one_table_of_type_names();
    void one_built_in_platform_service();
    void service_of_the_host_is_seen_by_the_module();

private:
    LoadedModule m_module { FIRST_MODULE };
};

void tst_ModulesBesideProgram::initTestCase()
{
    QCOMPARE(m_module.error(), QByteArray());
}

void tst_ModulesBesideProgram::one_logger()
{
    const void* const ofModule = m_module.call("moduleLogger");
    QVERIFY(ofModule != nullptr);
    QCOMPARE(ofModule, static_cast<const void*>(VLSingleton<VLLogger>::instance()));
}

void tst_ModulesBesideProgram::one_table_of_type_names()
{
    const void* const ofModule = m_module.call("moduleTypeTable");
    QVERIFY(ofModule != nullptr);
    QCOMPARE(ofModule, static_cast<const void*>(VLEventFolderType().enumToStringTable()));
}

void tst_ModulesBesideProgram::one_built_in_platform_service()
{
    const void* const ofModule = m_module.call("modulePlatform");
    QVERIFY(ofModule != nullptr);
    QCOMPARE(ofModule, static_cast<const void*>(VLPlatformIndependent::instance()));
}

void tst_ModulesBesideProgram::service_of_the_host_is_seen_by_the_module()
{
    VLPlatformIndependent ofHost;
    VLPlatformIndependent::setInstance(&ofHost);
    const void* const seenByModule = m_module.call("modulePlatform");
    VLPlatformIndependent::setInstance(nullptr);
    QCOMPARE(seenByModule, static_cast<const void*>(&ofHost));
}

QTEST_GUILESS_MAIN(tst_ModulesBesideProgram)
#include "tst_ModulesBesideProgram.moc"
