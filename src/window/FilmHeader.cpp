#include "window/FilmHeader.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "summary/ConversionSummary.h"
#include "window/Icons.h"
#include "window/Thumbnails.h"
#include "window/ToolTipBinder.h"

#include <QHBoxLayout>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr QSize usualPicture{128, 72};
constexpr QSize compactPicture{96, 54};

QList<Badge> badgesOf(const KXVideoFile &film)
{
    QList<Badge> badges;
    for (const summary::FilmFact &fact : summary::factsOf(film)) {
        if (fact.kind == summary::FilmFact::Kind::Codec)
            badges.append({fact.text, Role::Video, Role::VideoSoft});
        else
            badges.append({fact.text, Role::Second, Role::Groove});
    }
    const TrackList tracks = film.trackList();
    const auto added = std::count_if(tracks.begin(), tracks.end(),
                                     [](const TrackPointer &track) { return track->externalTrackFlag(); });
    if (film.theNumberOfVideoTracks() == u"0"_s)
        badges.append({FilmHeader::tr("no video"), Role::Warn, Role::WarnSoft});
    if (added > 0)
        badges.append({FilmHeader::tr("%1 added").arg(added), Role::Link, Role::Soft});
    return badges;
}

} // namespace

class FilmHeader::Picture final : public QWidget
{
public:
    void show(const QImage &image)
    {
        m_image = image;
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        paintThumbnail(painter, rect(), m_image);
    }

private:
    QImage m_image;
};

FilmHeader::FilmHeader(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_thumbnails(thumbnails)
    , m_tips(tips)
    , m_picture(named(new Picture, "FilmPicture", tr("Picture from the film")))
    , m_name(named(new ElidedLabel(Qt::ElideMiddle, Role::Text, Type::Title), "FilmName", tr("Film")))
    , m_path(named(new ElidedLabel(Qt::ElideMiddle, Role::Second, Type::Second), "ConvertFileField",
                   tr("Current file")))
    , m_badges(named(new BadgeRow, "FilmFacts", tr("What is known of the film")))
    , m_play(named(new QPushButton(icon(u"media-playback-start"_s), tr("Play")), "PlayButton",
                   tr("Play the ticked tracks")))
{
    setObjectName(u"FilmHeader"_s);
    m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *words = new QVBoxLayout;
    words->setSpacing(space::tiny);
    words->addStretch(1);
    words->addWidget(m_name);
    words->addWidget(m_path);
    words->addWidget(m_badges);
    words->addStretch(1);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, space::large, 0, space::large);
    layout->setSpacing(space::large);
    layout->addWidget(m_picture);
    layout->addLayout(words, 1);
    layout->addWidget(m_play);
    tips.bind(m_path, "ttConvertFileField");
    tips.bind(m_play, "ttPlayButton");
    connect(m_play, &QPushButton::clicked, &delegate, &KXAppDelegate::playButton);
    connect(&thumbnails, &Thumbnails::taken, this, [this] {
        if (!m_delegate.intake().isBusy()) // then another film is current for the moment
            refresh();
    });
    setCompact(false);
}

void FilmHeader::setCompact(bool compact)
{
    m_picture->setFixedSize(compact ? compactPicture : usualPicture);
    const int air = compact ? space::middle : space::large;
    layout()->setContentsMargins(0, air, 0, air);
    m_name->setFont(fontOf(compact ? Type::Pane : Type::Title));
}

void FilmHeader::refresh()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const VideoFilePointer film = controller.currentVideoFile();
    m_path->setText(controller.currentFileText());
    m_path->setInk(controller.currentFileTextColor() == u"red"_s ? Role::Bad : Role::Second);
    m_name->setText(film->theFileName() == u"none"_s ? QString() : film->theFileName());
    const QString refusal = m_delegate.playingRefusal();
    m_play->setEnabled(controller.canAddTrack() && refusal.isNull());
    m_tips.setReason(m_play, refusal);
    if (film->trackList().isEmpty())
        return;
    m_picture->show(m_thumbnails.of(film->theFileURL(), film->seconds().value_or(0)));
    m_badges->setBadges(badgesOf(*film));
    setAccessibleDescription(m_badges->accessibleDescription());
}

} // namespace window
