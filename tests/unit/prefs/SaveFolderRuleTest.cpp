#include "prefs/SaveFolder.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using prefs::SaveFolder;

class SaveFolderRuleTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resultsGoIntoTheFolderThatIsSetElseBesideTheSource()
    {
        const QUrl source = QUrl::fromLocalFile(u"/films/a.mkv"_s);
        const QUrl chosen = QUrl::fromLocalFile(u"/saved"_s);
        QCOMPARE(SaveFolder(chosen).forSource(source), chosen);
        QCOMPARE(SaveFolder(QUrl()).forSource(source), QUrl::fromLocalFile(u"/films"_s));
        QCOMPARE(SaveFolder(QUrl::fromLocalFile(u""_s)).forSource(source), QUrl::fromLocalFile(u"/films"_s));
    }

    void onlyAFolderThatIsSetIsRefused()
    {
        const support::Scratch scratch;
        const QString file = scratch.write(u"locked/film.mkv"_s, "x");
        lock(scratch, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        const support::Unprivileged user;
        QVERIFY(SaveFolder(QUrl()).refusal().isNull());
        QVERIFY(SaveFolder(scratch.url(u""_s)).refusal().isNull());
        QCOMPARE(SaveFolder(scratch.url(u"gone"_s)).refusal(),
                 u"The save folder %1 does not exist."_s.arg(scratch.path(u"gone"_s)));
        QCOMPARE(SaveFolder(QUrl::fromLocalFile(file)).refusal(),
                 u"The save folder %1 does not exist."_s.arg(file));
        QCOMPARE(SaveFolder(scratch.url(u"locked"_s)).refusal(),
                 u"The save folder %1 can't be written to."_s.arg(scratch.path(u"locked"_s)));
    }

    void resultsNeedAFolderThatCanBeWritten()
    {
        const support::Scratch scratch;
        const QUrl locked = QUrl::fromLocalFile(scratch.write(u"locked/film.mkv"_s, "x"));
        const QUrl open = QUrl::fromLocalFile(scratch.write(u"open/film.mkv"_s, "x"));
        lock(scratch, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        const support::Unprivileged user;
        QVERIFY(!SaveFolder(QUrl()).takesResultsOf(locked));
        QVERIFY(SaveFolder(QUrl()).takesResultsOf(open));
        QVERIFY(SaveFolder(scratch.url(u"open"_s)).takesResultsOf(locked));
        QVERIFY(!SaveFolder(scratch.url(u"locked"_s)).takesResultsOf(open));
        QVERIFY(!SaveFolder(scratch.url(u"gone"_s)).takesResultsOf(open));
    }

private:
    /// The others may be written by any user, who is not the one that made them.
    static void lock(const support::Scratch &scratch, QFileDevice::Permissions own)
    {
        const auto all =
            QFileDevice::ReadOther | QFileDevice::ExeOther | QFileDevice::ReadGroup | QFileDevice::ExeGroup;
        QFile::setPermissions(scratch.path(u"locked"_s), own | all);
        for (const QString &folder : {scratch.path(), scratch.path(u"open"_s)})
            QFile::setPermissions(folder, own | all | QFileDevice::WriteOwner | QFileDevice::WriteGroup |
                                              QFileDevice::WriteOther);
    }
};

TESSARAY_TEST(SaveFolderRuleTest)
#include "SaveFolderRuleTest.moc"
