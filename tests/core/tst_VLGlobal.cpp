#include <VLCore/VLGlobal.h>

#include <QtTest/QTest>

#include <type_traits>

using namespace Qt::StringLiterals;

static_assert(std::is_same_v<decltype(KOMMA), const QString>);

const QString* kommaOfSecondSourceFile();

class tst_VLGlobal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void komma_is_a_comma();
    void each_source_file_has_its_own_komma();
};

void tst_VLGlobal::komma_is_a_comma()
{
    QCOMPARE(KOMMA, u","_s);
}

void tst_VLGlobal::each_source_file_has_its_own_komma()
{
    const QString* const other = kommaOfSecondSourceFile();
    QCOMPARE(*other, u","_s);
    QVERIFY(other != &KOMMA);
}

QTEST_GUILESS_MAIN(tst_VLGlobal)
#include "tst_VLGlobal.moc"
