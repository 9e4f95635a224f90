#pragma once

#include "support/selection/ControllerFixture.h"

namespace support {

/// What updateTabs() finds. Tracks are words: "video", "srt", "external", or an audio track as "dtshd:6";
/// all of them are selected. The file has another video that is not.
struct TabCase
{
    QString tab = QStringLiteral("MKV");
    QString tracks = QStringLiteral("video");
    QString path = QStringLiteral("/v/a.mkv");
    /// The file was taken away: it has no tracks, the selection still has its own.
    bool fileIsEmpty = false;
    int popup = 0;
    int video = 0;
    int subtitle = 1;
    QStringList ticks{QStringLiteral("Pass Thru")};
    int openFiles = 1;
    // The tab "Edit Files".
    int editFiles = 0;
    int split = 0;
    QString start = QStringLiteral("0");
    QString end = QStringLiteral("0");
    QString size = QStringLiteral("0");
    QString duration = QStringLiteral("00:00:00");
    /// What every flag says before.
    bool before = false;

    QStringList words() const { return tracks.split(QLatin1Char(' '), Qt::SkipEmptyParts); }
    /// All of it, to be shown where a case fails.
    QString text() const;
};

/// A fixture in the state of a case. Everything that an update might write holds a value that it never
/// writes ("before"), so that what is left alone shows too.
struct TabFixture : ControllerFixture
{
    explicit TabFixture(const TabCase &tabCase);

    /// By name: each of the controller's fields, the selection's that an update may write, "calls", and for
    /// each selected track its user codec ("codecs") and its outputs ("outputs").
    QVariantMap state() const;

private:
    void setControls(const TabCase &tabCase);
    void setMarks(bool flags);
};

} // namespace support
