#pragma once

#include "platform/Fields.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

/// Knows whether a folder is being watched and which of its files are never to be processed. Owned by
/// the program; the queue looks down at it to leave the files alone that it writes itself.
class KXWatchModeController final : public QObject
{
    Q_OBJECT
    KX_FIELD(bool, appIsInWatchMode, setAppIsInWatchMode, false)
    /// In lower case.
    KX_FIELD(QStringList, movieExtensionsList, setMovieExtensionsList, movieExtensions())
    /// Present when watching began, already handed over, or written by ourselves.
    KX_FIELD(QList<QUrl>, baseWatchFolderMovieList, setBaseWatchFolderMovieList, {})

private:
    static QStringList movieExtensions();
};
