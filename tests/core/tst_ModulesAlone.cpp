#include "LoadedModule.h"

#include <QtTest/QTest>

/// A program that knows nothing of the libraries and loads two modules that do: the modules share
/// one of each object, although neither sees the other's symbols.
class tst_ModulesAlone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void program_does_not_link_the_libraries();
    void modules_share_data();
    void modules_share();

private:
    LoadedModule m_first { FIRST_MODULE };
    LoadedModule m_second { SECOND_MODULE };
};

void tst_ModulesAlone::initTestCase()
{
    QCOMPARE(m_first.error(), QByteArray());
    QCOMPARE(m_second.error(), QByteArray());
}

void tst_ModulesAlone::program_does_not_link_the_libraries()
{
    QVERIFY(dlsym(RTLD_DEFAULT, "_ZN8VLLogger10initializeEv") == nullptr);
}

void tst_ModulesAlone::modules_share_data()
{
    QTest::addColumn<QByteArray>("function");
    QTest::newRow("logger") << QByteArray("moduleLogger");
    QTest::newRow("table_of_type_names") << QByteArray("moduleTypeTable");
    QTest::newRow("platform_service") << QByteArray("modulePlatform");
}

void tst_ModulesAlone::modules_share()
{
    QFETCH(const QByteArray, function);
    const void* const ofFirst = m_first.call(function.constData());
    QVERIFY(ofFirst != nullptr);
    QCOMPARE(m_second.call(function.constData()), ofFirst);
}

QTEST_GUILESS_MAIN(tst_ModulesAlone)
#include "tst_ModulesAlone.moc"
