#include "engines/join/JoinFates.h"

#include "engines/Fates.h"
#include "engines/mkvtoolnix/MkvFates.h"

using namespace Qt::StringLiterals;
using media::MeantOutput;

namespace engines {

namespace {

/// The list of files is read as one film, without their chapters; attachments are those of the first.
QList<media::TrackFate> restOfConcat(const QList<QUrl> &files)
{
    QList<media::TrackFate> rest;
    for (const QUrl &file : files.mid(1)) {
        if (file == files.constFirst())
            continue;
        rest.append(restLeftOut(u"attachment"_s, u"Only those of the first file are taken."_s));
        rest.last().source = file;
    }
    for (const QString &kind : kindsOfStreams())
        rest.append(restCopied(kind));
    return rest << restLeftOut(u"chapters"_s, u"ffmpeg joins no chapters."_s);
}

QList<media::TrackFate> restOfMp4box()
{
    QList<media::TrackFate> rest;
    for (const QString &kind : kindsOfStreams())
        rest.append(restCopied(kind));
    return rest << restLeftOut(u"chapters"_s, u"MP4Box is not told to join chapters."_s);
}

} // namespace

MeantOutput joinOutput(const QString &joiner, const QList<QUrl> &files, const QUrl &output)
{
    MeantOutput meant = mkvJoinOutput(files, output);
    if (joiner == u"ffmpeg"_s)
        meant.rest = restOfConcat(files);
    else if (joiner == u"mp4box"_s)
        meant.rest = restOfMp4box();
    return meant;
}

} // namespace engines
