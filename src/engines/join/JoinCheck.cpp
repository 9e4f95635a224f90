#include "engines/join/JoinCheck.h"

#include "engines/join/JoinLook.h"

#include <QEventLoop>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

constexpr auto alertTime = std::chrono::seconds(15);

/// What of a file is compared.
struct Properties
{
    explicit Properties(const KXVideoFile &file);

    QString frameRate;
    QStringList size;
    QStringList counts;
    QStringList types;
    QStringList codecs;
};

/// The tracks are sorted by their numbers as texts, on purpose: 10 comes before 2.
Properties::Properties(const KXVideoFile &file)
    : frameRate(file.theFPS())
    , size{file.theWidth(), file.theHeight()}
    , counts{file.theNumberOfVideoTracks(), file.theNumberOfAudioTracks(), file.theNumberOfSubTracks()}
{
    TrackList tracks = file.trackList();
    std::stable_sort(tracks.begin(), tracks.end(), [](const TrackPointer &one, const TrackPointer &other) {
        return one->trackMp4boxID() < other->trackMp4boxID();
    });
    for (const TrackPointer &track : std::as_const(tracks)) {
        types.append(track->trackType());
        codecs.append(track->trackCodec());
    }
}

} // namespace

QStringList mismatchedProperties(const QList<VideoFilePointer> &files)
{
    bool rate = false;
    bool size = false;
    bool counts = false;
    bool types = false;
    bool codecs = false;
    for (qsizetype i = 0; i + 1 < files.size(); ++i) {
        const Properties one(*files.at(i));
        const Properties next(*files.at(i + 1));
        rate = rate || one.frameRate != next.frameRate;
        size = size || one.size != next.size;
        counts = counts || one.counts != next.counts;
        types = types || one.types != next.types;
        codecs = codecs || one.codecs != next.codecs;
    }
    QStringList names;
    for (const auto &[differs, name] :
         {std::pair(rate, u"Frame Rate"_s), std::pair(size, u"Video Resolution"_s),
          std::pair(counts, u"Track Count"_s), std::pair(types, u"Track Types"_s),
          std::pair(codecs, u"Track Codecs"_s)}) {
        if (differs)
            names.append(name);
    }
    return names;
}

QList<VideoFilePointer> filmsIn(const QList<JoinFile> &files)
{
    QList<VideoFilePointer> films;
    for (const JoinFile &file : files) {
        if (file.film)
            films.append(file.film);
    }
    return films;
}

QList<JoinFile> lookedAt(const QList<QUrl> &files, const KXPreferences &preferences, int atOnce)
{
    JoinLook look(preferences, atOnce);
    QEventLoop loop;
    QObject::connect(&look, &JoinLook::answered, &loop, &QEventLoop::quit);
    look.begin(files);
    loop.exec();
    return look.files();
}

platform::AlertPointer mismatchAlert(const QStringList &names)
{
    platform::Alert alert;
    alert.message =
        u"The files to be joined appear to have the following properties mismatched, which may cause "
        "errors or unexpected results in the join process."_s;
    alert.informativeText = names.join(u", "_s);
    alert.style = platform::AlertStyle::Warning;
    alert.closesAfter = alertTime;
    return std::make_shared<const platform::Alert>(alert);
}

} // namespace engines
