#include "steps/FreeNames.h"

#include "platform/PlainFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

/// What is longer is no extension, but a name with a full stop in it.
constexpr qsizetype longestSuffix = 32;

/// The name in its two halves. A last full stop is one too: the tools put their numbers in front of it.
struct Name
{
    explicit Name(const QFileInfo &info)
        : suffix(info.suffix().isEmpty() ? QString() : u'.' + info.suffix())
    {
        if (info.fileName().endsWith(u'.'))
            suffix = u"."_s;
        stem = info.fileName().chopped(suffix.size());
    }

    QString suffix;
    QString stem;
};

QString withoutLastCharacter(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.toEnd();
    return text.left(qMax<qsizetype>(finder.toPreviousBoundary(), 0));
}

qsizetype bytesOf(const QString &name)
{
    return QFile::encodeName(name).size();
}

} // namespace

QUrl withMark(const QUrl &location, const QString &mark, qsizetype reserved)
{
    const QFileInfo info(location.toLocalFile());
    Name name(info);
    if (bytesOf(name.suffix) > longestSuffix) {
        name.stem += name.suffix;
        name.suffix.clear();
    }
    const qsizetype most =
        platform::longestNameIn(info.absolutePath()) - bytesOf(mark + name.suffix) - reserved;
    while (!name.stem.isEmpty() && bytesOf(name.stem) > most)
        name.stem = withoutLastCharacter(name.stem);
    return QUrl::fromLocalFile(info.absolutePath() + u'/' + name.stem + mark + name.suffix);
}

QRegularExpression partPattern(const QUrl &output)
{
    const Name name(QFileInfo(output.toLocalFile()));
    return QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(name.stem) +
                                                                  u"-([0-9]+)"_s +
                                                                  QRegularExpression::escape(name.suffix)),
                              QRegularExpression::DotMatchesEverythingOption);
}

/// No QDir::filePath(): it takes a name that begins with a colon for a resource.
QList<QUrl> partsOf(const QUrl &output)
{
    const QRegularExpression pattern = partPattern(output);
    const QDir folder = QFileInfo(output.toLocalFile()).absoluteDir();
    QMap<std::pair<qint64, QString>, QUrl> parts; // "a-1" and "a-001" are two
    for (const QString &name : folder.entryList(QDir::Files | QDir::System | QDir::Hidden)) {
        const auto match = pattern.match(name);
        if (match.hasMatch())
            parts.insert({match.captured(1).toLongLong(), name},
                         QUrl::fromLocalFile(folder.path() + u'/' + name));
    }
    return parts.values();
}

} // namespace steps
