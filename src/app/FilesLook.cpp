#include "app/FilesLook.h"

#include <algorithm>

namespace app {

namespace {

constexpr int looksAtOnce = 1; // it is no hurry, and a job may be running

} // namespace

FilesLook::FilesLook(const KXPreferences &preferences, QObject *parent)
    : QObject(parent)
    , m_look(preferences, looksAtOnce)
{
    connect(&m_look, &engines::JoinLook::answered, this, &FilesLook::take);
}

void FilesLook::list(const QList<QUrl> &files)
{
    if (files == m_listed)
        return;
    m_listed = files;
    if (m_asked.isEmpty())
        begin();
}

/// What was listed meanwhile comes next.
void FilesLook::begin()
{
    QList<QUrl> unknown;
    std::copy_if(m_listed.cbegin(), m_listed.cend(), std::back_inserter(unknown),
                 [this](const QUrl &file) { return !isKnown(file); });
    m_asked = unknown;
    if (!m_asked.isEmpty())
        m_look.begin(m_asked);
}

void FilesLook::take()
{
    for (const QUrl &file : std::as_const(m_asked))
        m_films.insert(file, nullptr);
    for (const engines::JoinFile &file : m_look.files())
        m_films.insert(file.url, file.film);
    m_asked.clear();
    begin();
    Q_EMIT changed();
}

QList<VideoFilePointer> FilesLook::films(const QList<QUrl> &files) const
{
    QList<VideoFilePointer> known;
    for (const QUrl &file : files) {
        if (const VideoFilePointer found = film(file))
            known.append(found);
    }
    return known;
}

} // namespace app
