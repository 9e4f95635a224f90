#pragma once

#include "engines/join/JoinLook.h"

#include <QHash>
#include <QObject>

class KXPreferences;

namespace app {

/// What is known of the files of the tab "Edit Files": each is looked at once, beside everything else. Owned
/// by the list that shows them; it changes nothing.
class FilesLook final : public QObject
{
    Q_OBJECT

public:
    /// The preferences must outlive it.
    FilesLook(const KXPreferences &preferences, QObject *parent);

    /// These are listed now; those that are not known yet are looked at.
    void list(const QList<QUrl> &files);
    /// Null while it was not looked at, and where it is no film.
    VideoFilePointer film(const QUrl &file) const { return m_films.value(file); }
    bool isKnown(const QUrl &file) const { return m_films.contains(file); }
    /// The films in that order, without those of which nothing is known.
    QList<VideoFilePointer> films(const QList<QUrl> &files) const;

Q_SIGNALS:
    void changed();

private:
    void begin();
    void take();

    engines::JoinLook m_look;
    QHash<QUrl, VideoFilePointer> m_films;
    QList<QUrl> m_asked;
    QList<QUrl> m_listed;
};

} // namespace app
