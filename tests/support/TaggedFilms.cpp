#include "support/TaggedFilms.h"

#include "support/ClipFactory.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString tinyBase()
{
    return clip(u"tiny-base.mkv"_s, [](const QString &path) {
        runProgram(u"ffmpeg"_s, u"-nostdin -y -loglevel error -f lavfi -i testsrc2=s=64x48:r=10:d=2 -f lavfi "
                                "-i sine=d=2:r=48000 -c:v libx264 -preset ultrafast -g 5 -pix_fmt yuv420p "
                                "-ac 2 -c:a aac -b:a 32k"_s.split(u' ')
                                    << path);
    });
}

QString withSubtitle(const QString &name, const QString &extension, const QByteArray &content)
{
    return clip(name, [&](const QString &path) {
        const QString words = path + extension;
        writeContent(words, content);
        runProgram(u"mkvmerge"_s, {u"-q"_s, u"-o"_s, path, tinyBase(), words});
        QFile::remove(words);
    });
}

QByteArray xmlOf(const TagList &tags)
{
    QString xml = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Tags><Tag>"_s;
    for (const auto &[name, text] : tags) {
        xml += u"<Simple><Name>%1</Name><String>%2</String></Simple>"_s.arg(name.toHtmlEscaped(),
                                                                            text.toHtmlEscaped());
    }
    return (xml + u"</Tag></Tags>\n"_s).toUtf8();
}

} // namespace

QString tinyTextMkv()
{
    return withSubtitle(u"tiny-text.mkv"_s, u".srt"_s,
                        "1\n00:00:00,000 --> 00:00:01,900\nHello, world\n\n");
}

QString tinyPictureMkv()
{
    return withSubtitle(u"tiny-picture.mkv"_s, u".sup"_s, pictureSubtitle());
}

void writeTagged(const QString &film, const QString &path, const QList<TagList> &tags)
{
    QStringList words{u"-q"_s, u"-o"_s, path};
    QStringList files;
    for (qsizetype track = 0; track < tags.size(); ++track) {
        if (tags.at(track).isEmpty())
            continue;
        files.append(path + u".%1.xml"_s.arg(track));
        writeContent(files.constLast(), xmlOf(tags.at(track)));
        words << u"--tags"_s << QString::number(track) + u':' + files.constLast();
    }
    runProgram(u"mkvmerge"_s, words << film);
    for (const QString &file : std::as_const(files))
        QFile::remove(file);
}

TagList behindABrace(const TagList &tags)
{
    return TagList{{u"aaa"_s, u"}"_s}} + tags;
}

} // namespace support
