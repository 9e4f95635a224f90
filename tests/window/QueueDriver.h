#pragma once

#include "support/Waiting.h"
#include "window/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QProcess>
#include <QTest>

/// What people do in the main window to get jobs, and what tells whether they got them.
namespace driver {

enum JobColumn { Delete, File, Type, Status };
enum TrackColumn { Kind, Language, Title, Default, Forced };

/// Clicks the mark of a radio button or tick box, which may be narrower than its place.
inline void choose(WindowFixture &fixture, const char *option)
{
    auto *button = fixture.find<QAbstractButton>(option);
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(10, button->height() / 2));
    QTest::qWait(0);
}

/// The first row of the track table that tells this codec.
inline int rowOf(WindowFixture &fixture, const QString &codec)
{
    const QStringList kinds = fixture.rows("ConvertTrackTable", Kind);
    for (int row = 0; row < kinds.size(); ++row) {
        if (kinds.at(row).contains(codec))
            return row;
    }
    qFatal("No track is %s: %s", qPrintable(codec), qPrintable(kinds.join(QLatin1Char(';'))));
}

/// Clicks the tick box of a cell of the track table, which is scrolled to it.
inline void tickCell(WindowFixture &fixture, int row, TrackColumn column = Kind)
{
    auto *table = fixture.find<QTreeView>("ConvertTrackTable");
    table->scrollTo(table->model()->index(row, column));
    const QRect cell = table->visualRect(table->model()->index(row, column));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(cell.left() + 10, cell.center().y()));
    QTest::qWait(0);
}

inline void tick(WindowFixture &fixture, const QStringList &codecs)
{
    for (const QString &codec : codecs)
        tickCell(fixture, rowOf(fixture, codec));
}

/// Opens the editor of a cell with the keyboard; answers it.
template <typename Editor>
Editor *edit(WindowFixture &fixture, int row, TrackColumn column)
{
    auto *table = fixture.find<QTreeView>("ConvertTrackTable");
    table->scrollTo(table->model()->index(row, column));
    fixture.clickCell(table, row, column);
    Editor *editor = nullptr;
    const bool came = support::waitFor([&] {
        QTest::keyClick(table, Qt::Key_F2); // does nothing while an editor is closing, or open
        editor = table->viewport()->findChild<Editor *>();
        return editor != nullptr;
    });
    if (!came)
        qFatal("The cell can't be edited.");
    return editor;
}

inline void writeTitle(WindowFixture &fixture, int row, const QString &title)
{
    auto *editor = edit<QLineEdit>(fixture, row, Title);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, title);
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::qWait(0);
}

/// Picks an entry of the menu of languages, which opens over its cell.
inline void pickLanguage(WindowFixture &fixture, int row, const QString &language)
{
    auto *menu = edit<QComboBox>(fixture, row, Language);
    QTest::keyClick(menu, Qt::Key_Space);
    QAbstractItemView *list = menu->view();
    if (!support::waitFor([&] { return list->isVisible(); }))
        qFatal("The menu of languages did not open.");
    QTest::keyClicks(list, language);
    QTest::keyClick(list, Qt::Key_Return);
    QTest::qWait(0);
}

/// Waits until a job has that status.
inline bool waitForStatus(WindowFixture &fixture, int row, const QString &status, int milliseconds = 60000)
{
    return support::waitFor([&] { return fixture.rows("QueueTable", Status).value(row) == status; },
                            milliseconds);
}

inline void deleteRow(WindowFixture &fixture, int row)
{
    fixture.clickCell(fixture.find<QTreeView>("QueueTable"), row, Delete);
}

/// What stands before the percent sign of "Pass #1 40%"; negative where there is none.
inline int percentageOf(const QString &progress)
{
    const QString number = progress.section(QLatin1Char(' '), -1);
    return number.endsWith(QLatin1Char('%')) ? number.chopped(1).toInt() : -1;
}

/// How far the first step is.
inline int percentage(WindowFixture &fixture)
{
    return percentageOf(fixture.steps(1).value(0));
}

/// The processes of a tool that have a path among their arguments.
inline QList<qint64> processesOn(const QByteArray &tool, const QString &path)
{
    QList<qint64> found;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/cmdline").arg(name));
        if (name.toLongLong() <= 0 || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArrayList words = file.readAll().split('\0');
        if (words.constFirst().endsWith('/' + tool) && words.contains(path.toUtf8()))
            found.append(name.toLongLong());
    }
    return found;
}

/// mkvmerge's own view of a file: "audio:eng:Title:1:0" for type, language, title, default and forced.
inline QStringList tracksOf(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral("mkvmerge"), {QStringLiteral("-J"), path});
    process.waitForFinished();
    const QJsonDocument identified = QJsonDocument::fromJson(process.readAllStandardOutput());
    QStringList tracks;
    for (const QJsonValue &track : identified[QStringLiteral("tracks")].toArray()) {
        const QJsonValue properties = track[QStringLiteral("properties")];
        tracks.append(QStringList{track[QStringLiteral("type")].toString(),
                                  properties[QStringLiteral("language")].toString(),
                                  properties[QStringLiteral("track_name")].toString(),
                                  QString::number(properties[QStringLiteral("default_track")].toBool()),
                                  QString::number(properties[QStringLiteral("forced_track")].toBool())}
                          .join(QLatin1Char(':')));
    }
    return tracks;
}

} // namespace driver
