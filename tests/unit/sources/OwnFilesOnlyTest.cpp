// Who may write, rename or delete files: the sources are read for every word that does.
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// What writes, renames or deletes: by Qt, by the system, by the standard library, by a shell line.
const QRegularExpression &harm()
{
    static const QRegularExpression words(
        u"\\bQFile::(remove|rename|copy|link|moveToTrash)\\b|\\bQSaveFile\\b|\\bQTemporary(File|Dir)\\b"
        "|\\bQLockFile\\b|\\b(WriteOnly|ReadWrite|Append|Truncate|NewOnly)\\b"
        "|\\bQDir\\(.*\\)\\.(remove|rename|rmdir|rmpath)\\w*\\(|\\bremoveRecursively\\b"
        "|\\bstd::(remove|rename)\\(\\w*[Pp]ath|\\bstd::filesystem\\b|\\bstd::[ow]?fstream\\b|\\bfopen\\b"
        "|\\bstd::rename\\b|(?<![\\w>])::(unlink|unlinkat|rename|renameat2?|renamex_np|open|openat|creat|"
        "truncate|link|"
        "symlink|mkfifo|mkstemp|remove)\\("
        "|u\"(rm|mv|cp|ln|dd|tee|truncate|unlink|install|shred)( [^\"]*)?\""_s);
    return words;
}

/// The places that may, each with its reason.
const QMap<QString, QString> &reasons()
{
    static const QMap<QString, QString> list{
        {u"platform/PlainFiles.cpp"_s, u"the one place that opens, renames and deletes; knows no names"_s},
        {u"platform/PlainFiles.h"_s, u"its header"_s},
        {u"platform/Keeper.cpp"_s, u"/dev/null in the place of the streams of the keeper"_s},
        {u"platform/FileLock.cpp"_s, u"lock files of our own, which go with their holder"_s},
        {u"platform/OrdinaryFile.cpp"_s, u"opens to read only"_s},
        {u"platform/OpenFiles.cpp"_s, u"opens to read only, to ask who writes"_s},
        {u"platform/FolderTrial.cpp"_s, u"a file of its own, made exclusively to see whether a folder takes one"_s},
        {u"engines/ffmpeg/KXFfmpegConverter.cpp"_s, u"words of a dry run, which are printed"_s},
        {u"engines/join/KXVideoJoiner.cpp"_s, u"words of a dry run, which are printed"_s},
        {u"app/OutputJournal.cpp"_s, u"the journals of what was written, in our own folder"_s},
        {u"app/Environment.cpp"_s, u"/dev/null in the place of streams that are closed"_s},
        {u"window/SingleInstance.cpp"_s, u"the socket of the running window"_s},
        {u"window/HandOverMessage.cpp"_s, u"a stream in memory"_s},
        {u"cli/PresetsCommand.cpp"_s, u"the file that \"presets export\" was told to make, exclusively"_s},
        {u"steps/ScratchFolder.cpp"_s, u"the temporary folder of the program and those of its jobs"_s},
        {u"media/CodecVocabulary.cpp"_s, u"\"rm\" is a file extension there"_s},
    };
    return list;
}

/// Lines of a tree that do, as "module/File.cpp: line", comments left out.
QStringList harmIn(const QString &root)
{
    QStringList found;
    QDirIterator files(root, {u"*.cpp"_s, u"*.h"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("can't read %s", qPrintable(file.fileName()));
        static const QRegularExpression comment(u"//.*"_s);
        for (QString line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            line.remove(comment);
            if (line.contains(harm()))
                found.append(file.fileName().mid(root.size() + 1) + u": "_s + line.trimmed());
        }
    }
    return found;
}

QString fileOf(const QString &finding)
{
    return finding.section(u": "_s, 0, 0);
}

} // namespace

class OwnFilesOnlyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noOtherCodeWritesRenamesOrDeletes()
    {
        const QStringList found = harmIn(QStringLiteral(TESSARAY_SOURCE_DIR "/src"));
        QStringList offences;
        for (const QString &finding : found) {
            if (!reasons().contains(fileOf(finding)))
                offences.append(finding);
        }
        QVERIFY2(offences.isEmpty(), qPrintable(offences.join(u'\n')));
        QVERIFY(found.size() > 10); // it has read them
    }

    void wouldCatch_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isHarm");
        for (const char *line :
             {"QFile::remove(path);", "QFile::rename(a, b);", "QFile::copy(a, b);", "QSaveFile file(path);",
              "file.open(QIODevice::WriteOnly | QIODevice::Append)", "QDir(folder).removeRecursively();",
              "::unlink(path);", "std::rename(a, b)", "doUnixCommandWithOptions(u\"rm\"_s, {file});",
              "doUnixCommandWithOptions(u\"mv -f\"_s, {file});", "std::ofstream out(path);",
              "::open(path, O_WRONLY);", "QDir(path).rmdir(name);"})
            QTest::newRow(line) << QByteArray(line) << true;
        for (const char *line :
             {"list.remove(2);", "// QFile::remove(path)", "file.open(QIODevice::ReadOnly)",
              "m_files.remove(name);", "u\"remove\"_s", "guard.files().rename(a, b);"})
            QTest::newRow(line) << QByteArray(line) << false;
    }

    void wouldCatch()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isHarm);
        const support::Scratch scratch;
        scratch.write(u"src/room/A.cpp"_s, "void f()\n{\n    " + line + "\n}\n");
        QCOMPARE(harmIn(scratch.path(u"src"_s)).size(), isHarm ? 1 : 0);
    }
};

TESSARAY_TEST(OwnFilesOnlyTest)
#include "OwnFilesOnlyTest.moc"
