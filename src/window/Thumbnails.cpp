#include "window/Thumbnails.h"

#include "tools/ToolEnvironment.h"
#include "window/Icons.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int longestRun = 5000; // milliseconds, and twice that each time that it is tried again
constexpr int mostTries = 4;
constexpr double placeInFilm = 0.1; // of the film's length

const QString priority = u"10"_s; // after everything else; at 19 none would come beside a conversion

bool isSwitchedOff = false;

QStringList argumentsFor(const QUrl &film, double seconds)
{
    return {u"-nostdin"_s,
            u"-v"_s,
            u"error"_s,
            u"-ss"_s,
            QString::number(seconds * placeInFilm, 'f', 2),
            u"-i"_s,
            u"file:"_s + film.toLocalFile(),
            u"-an"_s,
            u"-frames:v"_s,
            u"1"_s,
            u"-vf"_s,
            u"scale=256:-2"_s,
            u"-f"_s,
            u"image2pipe"_s,
            u"-c:v"_s,
            u"png"_s,
            u"-"_s};
}

} // namespace

Thumbnails::Thumbnails(QObject *parent)
    : QObject(parent)
{
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &Thumbnails::giveUp);
}

Thumbnails::~Thumbnails() = default;

void Thumbnails::setSwitchedOff(bool off)
{
    isSwitchedOff = off;
}

QImage Thumbnails::of(const QUrl &film, double seconds)
{
    const auto known = m_pictures.constFind(film);
    if (known != m_pictures.constEnd())
        return *known;
    if (isSwitchedOff || m_ffmpeg.isEmpty())
        return {};
    m_pictures.insert(film, {});
    m_wishes.append({film, seconds, 0});
    QMetaObject::invokeMethod(this, &Thumbnails::takeNext, Qt::QueuedConnection);
    return {};
}

void Thumbnails::takeNext()
{
    if (m_process || m_wishes.isEmpty())
        return;
    m_wish = m_wishes.takeFirst();
    m_bytes.clear();
    tools::ToolProcess::Request request;
    request.program = u"nice"_s;
    request.arguments = QStringList{u"-n"_s, priority, m_ffmpeg} + argumentsFor(m_wish.film, m_wish.seconds);
    request.environment = QProcessEnvironment::systemEnvironment();
    m_process = tools::ToolProcess::start(request);
    connect(m_process.get(), &tools::ToolProcess::chunkRead, this,
            [this](tools::ToolProcess::Channel channel, const QByteArray &bytes) {
                if (channel == tools::ToolProcess::Channel::Output)
                    m_bytes += bytes;
            });
    connect(m_process.get(), &tools::ToolProcess::channelEnded, this,
            [this](tools::ToolProcess::Channel channel) {
                if (channel == tools::ToolProcess::Channel::Output)
                    finish();
            });
    m_patience.start(longestRun << m_wish.tries);
}

void Thumbnails::giveUp()
{
    if (++m_wish.tries < mostTries)
        m_wishes.append(m_wish);
    finish();
}

void Thumbnails::finish()
{
    m_patience.stop();
    if (!m_process)
        return;
    m_process->disconnect(this);
    const tools::ToolProcessPointer ended = std::exchange(m_process, nullptr);
    QImage picture;
    if (picture.loadFromData(m_bytes, "PNG") && !picture.isNull()) {
        m_pictures.insert(m_wish.film, picture);
        Q_EMIT taken(m_wish.film);
    }
    QMetaObject::invokeMethod(this, &Thumbnails::takeNext, Qt::QueuedConnection);
}

void paintThumbnail(QPainter &painter, const QRect &rect, const QImage &picture)
{
    painter.fillRect(rect, color(picture.isNull() ? Role::Side : Role::Groove));
    if (picture.isNull()) {
        const int side = rect.height() / 2;
        const QRect middle(rect.center().x() - side / 2, rect.center().y() - side / 2, side, side);
        paintIcon(painter, middle, u"video-x-generic"_s, color(Role::Edge));
        return;
    }
    const double ratio = painter.device()->devicePixelRatioF();
    QImage scaled =
        picture.scaled((QSizeF(rect.size()) * ratio).toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    const QSizeF size = scaled.deviceIndependentSize();
    painter.drawImage(
        QPointF(rect.x() + (rect.width() - size.width()) / 2, rect.y() + (rect.height() - size.height()) / 2),
        scaled);
}

} // namespace window
