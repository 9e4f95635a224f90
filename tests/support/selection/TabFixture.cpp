#include "support/selection/TabFixture.h"

#include <QMetaProperty>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const QString untouched = u"before"_s;

const QStringList &selectionFields()
{
    static const QStringList fields{u"userFPS"_s,        u"userWidth"_s, u"userVideoBitRate"_s,
                                    u"userPassNumber"_s, u"splitType"_s, u"theDevice"_s};
    return fields;
}

TrackPointer trackFor(const QString &word)
{
    if (word == u"video"_s)
        return probedVideo();
    if (word.contains(u':'))
        return probedAudio(word.section(u':', 0, 0), word.section(u':', 1));
    const TrackPointer track = probedSubtitle();
    if (word == u"external"_s)
        track->setTrackType(u"External Subtitle"_s);
    return track;
}

QList<QMetaProperty> findShownFields()
{
    QList<QMetaProperty> fields;
    const QMetaObject &meta = KXSelectionController::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (meta.property(i).isWritable() && meta.property(i).hasNotifySignal())
            fields.append(meta.property(i));
    }
    return fields;
}

const QList<QMetaProperty> &shownFields()
{
    static const QList<QMetaProperty> fields = findShownFields();
    return fields;
}

} // namespace

QString TabCase::text() const
{
    return QStringList{u"tab "_s + tab,
                       u"tracks "_s + tracks,
                       path,
                       fileIsEmpty ? u"empty"_s : u"filled"_s,
                       u"popup %1, video %2, subtitle %3"_s.arg(popup).arg(video).arg(subtitle),
                       u"ticks "_s + ticks.join(u','),
                       u"open %1"_s.arg(openFiles),
                       u"edit %1, split %2, %3-%4, size %5, duration %6"_s.arg(editFiles).arg(split).arg(
                           start, end, size, duration),
                       before ? u"flags set"_s : u"flags clear"_s}
        .join(u"; "_s);
}

TabFixture::TabFixture(const TabCase &tabCase)
{
    setControls(tabCase);
    TrackList tracks;
    int audio = 0;
    for (const QString &word : tabCase.words()) {
        tracks.append(trackFor(word));
        if (word.contains(u':'))
            tracks.last()->setSelectedAudioTrackIndex(QString::number(audio++));
    }
    selection->setTrackList(tracks);
    selection->setVidCount(QString::number(tabCase.words().count(u"video"_s)));
    selection->setAudCount(QString::number(audio));
    selection->setSubCount(
        QString::number(tabCase.words().count(u"srt"_s) + tabCase.words().count(u"external"_s)));
    setFile(tabCase.path, tabCase.fileIsEmpty ? TrackList() : tracks + TrackList{probedVideo()});
    openFiles.count = tabCase.openFiles;
    setMarks(tabCase.before);
    forgetCalls();
}

void TabFixture::setControls(const TabCase &tabCase)
{
    controller.setCurrentTab(tabCase.tab);
    controller.setAudioTrackLabels({u"one"_s, u"two"_s});
    controller.setAudioTrackPopupIndex(tabCase.popup);
    controller.setAudioMatrixSelections(tabCase.ticks);
    controller.setEnteredAAC2BitRate(u"160 kbps"_s);
    controller.setEnteredAAC51BitRate(u"320 kbps"_s);
    controller.setEnteredAC351BitRate(u"640 kbps"_s);
    controller.setVideoMatrixIndex(tabCase.video);
    controller.setSubtitleMatrixIndex(tabCase.subtitle);
    controller.setMp4Device(u"PS3"_s);
    controller.setEnteredUserVideoBitRate(u"1500"_s);
    controller.setEnteredUserFPS(u"29.97"_s);
    controller.setEnteredUserWidth(u"720"_s);
    controller.setSplitTypeMatrixIndex(tabCase.split);
    controller.setEnteredSplitSize(tabCase.size);
    controller.setEnteredSplitDuration(tabCase.duration);
    selection->setSplitStartTimeSeconds(tabCase.start);
    selection->setSplitEndTimeSeconds(tabCase.end);
    QList<QUrl> files;
    while (files.size() < tabCase.editFiles)
        files.append(QUrl::fromLocalFile(u"/v/%1.mkv"_s.arg(files.size())));
    selection->setEditFilesURLsList(files);
}

void TabFixture::setMarks(bool flags)
{
    for (const QMetaProperty &field : shownFields()) {
        if (field.typeId() == QMetaType::Bool)
            field.write(&controller, flags);
    }
    controller.setCurrentFileText(untouched);
    controller.setCurrentFileTextColor(untouched);
    controller.setMkvVideoPassThruColor(untouched);
    controller.setMkvAudioPassThruColor(untouched);
    for (const QString &field : selectionFields())
        selection->setProperty(qPrintable(field), untouched);
    selection->setJobStepList({untouched});
    selection->setUserAudioBitRate(u"55"_s);
    for (const TrackPointer &track : selection->trackList()) {
        track->setUserCodec(untouched);
        setOutputs(*track, u""_s);
    }
}

QVariantMap TabFixture::state() const
{
    QVariantMap state;
    for (const QMetaProperty &field : shownFields())
        state.insert(QString::fromLatin1(field.name()), field.read(&controller));
    for (const QString &field : selectionFields())
        state.insert(field, selection->property(qPrintable(field)));
    state.insert(u"jobStepList"_s, selection->jobStepList());
    QStringList codecs;
    QStringList outputs;
    for (const TrackPointer &track : selection->trackList()) {
        codecs.append(track->userCodec());
        outputs.append(outputsOf(*track));
    }
    state.insert(u"codecs"_s, codecs);
    state.insert(u"outputs"_s, outputs);
    state.insert(u"calls"_s, openFiles.calls);
    return state;
}

} // namespace support
